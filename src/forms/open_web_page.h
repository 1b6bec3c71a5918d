// Opens a web page or a local file in the program registered for http.
#pragma once

#include <string>
#include <string_view>

#include "platform/shell.h"

namespace quenlar {

// Opens `address` (UTF-8) in the user's browser. A text without "http://" and "https://" is taken for a local path and
// becomes a file:/// address. Blanks, quotes and control characters are percent-encoded, so that the browser gets one
// argument. Does nothing when no program is registered. The shell may pump while it starts the program.
void OpenWebPage(Shell& shell, std::string_view address);

// Returns the program of a registered open command. A command that begins with a double quote gives the text up to the
// next one. Any other command gives the text before its first "-". Both are trimmed.
//
// So an unquoted path is cut at a hyphen of its own ("C:\my-browser\b.exe" gives "C:\my"). A program whose path holds a
// hyphen is registered in quotes. Kept: BrowserProgram.IsTheQuotedPathOrTheTextBeforeTheFirstHyphen.
[[nodiscard]] std::string BrowserProgram(std::string_view command);

}  // namespace quenlar
