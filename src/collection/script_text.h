// Text as it may stand in a data block of a web page.
#pragma once

#include <string>
#include <string_view>

namespace quenlar {

// Appends `utf8` as a JSON string with its quotes. It is ASCII alone, so that no shell and no editor changes it, and
// holds neither "<" nor ">" nor "&", so that nothing in it ends the script element around it or opens a comment. Bytes
// that are not UTF-8 become U+FFFD.
void AppendScriptText(std::string_view utf8, std::string& to);

}  // namespace quenlar
