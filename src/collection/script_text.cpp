#include "collection/script_text.h"

#include "platform/utf8.h"

namespace quenlar {
namespace {

constexpr char32_t kReplacement = 0xFFFD;

void AppendUnit(char32_t unit, std::string& to) {
  static constexpr char kDigits[] = "0123456789abcdef";
  to += "\\u";
  for (int shift = 12; shift >= 0; shift -= 4) to += kDigits[unit >> shift & 0xF];
}

bool StandsAsItIs(char32_t code) {
  return code >= 0x20 && code < 0x7F && code != '"' && code != '\\' && code != '<' && code != '>' && code != '&';
}

}  // namespace

void AppendScriptText(std::string_view utf8, std::string& to) {
  to += '"';
  while (!utf8.empty()) {
    Utf8Character character = DecodeUtf8(utf8);
    if (character.bytes == 0) character = {kReplacement, 1};
    utf8.remove_prefix(character.bytes);
    const char32_t code = character.code;
    if (StandsAsItIs(code)) {
      to += static_cast<char>(code);
    } else if (code < 0x10000) {
      AppendUnit(code, to);
    } else {
      AppendUnit(0xD800 + ((code - 0x10000) >> 10), to);
      AppendUnit(0xDC00 + ((code - 0x10000) & 0x3FF), to);
    }
  }
  to += '"';
}

}  // namespace quenlar
