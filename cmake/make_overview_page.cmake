# Writes the page of an overview, without its data, as a C++ source: style and scripts are put into page.html, and the
# policy allows these two by their hashes and nothing else.
# usage: cmake -DFOLDER=src/collection/overview -DOUTPUT=FILE -P make_overview_page.cmake

# Reads files of ASCII, one behind the other. Nothing in them can end the element or the literal that they are put into.
function(read_ascii result)
  foreach(name ${ARGN})
    file(READ ${FOLDER}/${name} text)
    string(REGEX MATCH "[^\n -~]|</s|<!--|\\)page\"" odd "${text}")
    if(odd AND NOT name STREQUAL "page.html")
      message(FATAL_ERROR "${name} must not hold: ${odd}")
    endif()
    string(APPEND whole "${text}")
  endforeach()
  set(${result} "${whole}" PARENT_SCOPE)
endfunction()

# The SHA-256 of a text, as a content security policy spells it.
function(hash_for_policy text result)
  string(SHA256 hex "${text}")
  string(APPEND hex "00")  # whole groups of three bytes; the last digit is then only filling
  set(digits "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/")
  foreach(at RANGE 0 60 6)
    string(SUBSTRING ${hex} ${at} 6 group)
    foreach(shift 18 12 6 0)
      math(EXPR digit "(0x${group} >> ${shift}) & 63")
      string(SUBSTRING ${digits} ${digit} 1 digit)
      string(APPEND base64 ${digit})
    endforeach()
  endforeach()
  string(SUBSTRING ${base64} 0 43 base64)
  set(${result} "'sha256-${base64}='" PARENT_SCOPE)
endfunction()

read_ascii(page page.html)
read_ascii(style style.css)
read_ascii(script model.js elements.js summary.js list.js start.js)
hash_for_policy("${style}" style_hash)
hash_for_policy("${script}" script_hash)
string(CONCAT policy "default-src 'none'; script-src ${script_hash}; style-src ${style_hash}; base-uri 'none'; "
       "form-action 'none'; require-trusted-types-for 'script'; trusted-types 'none'")
string(REPLACE "@POLICY@" "${policy}" page "${page}")
string(REPLACE "@STYLE@" "${style}" page "${page}")
string(REPLACE "@SCRIPT@" "${script}" page "${page}")
string(FIND "${page}" "@DATA@" data)
string(SUBSTRING "${page}" 0 ${data} head)
math(EXPR data "${data} + 6")
string(SUBSTRING "${page}" ${data} -1 tail)
file(WRITE ${OUTPUT} "// Written by make_overview_page.cmake.
#include \"collection/overview_page.h\"

namespace quenlar::overview_page {

std::string_view Head() { return R\"page(${head})page\"; }
std::string_view Tail() { return R\"page(${tail})page\"; }

}  // namespace quenlar::overview_page
")
