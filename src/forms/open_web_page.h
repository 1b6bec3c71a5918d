// Opens a web page or a local file in the program registered for http.
#pragma once

#include <string>
#include <string_view>

#include "platform/shell.h"

namespace quenlar {

// Does nothing where no program is registered. Blanks, quotes and control characters of a web address are
// percent-encoded, so that it stays one argument; a local path becomes a file:/// address.
void OpenWebPage(Shell& shell, std::string_view address);

// The program of a registered open command: the text between the first two double quotes, or, for a command that does
// not begin with one, the text before the first "-"; trimmed.
[[nodiscard]] std::string BrowserProgram(std::string_view command);

}  // namespace quenlar
