// Opens a web page or a local file in the user's browser.
#pragma once

#include <string_view>

#include "platform/shell.h"

namespace quenlar {

// Opens `address` (UTF-8) in the user's browser. A text without "http://" and "https://" is taken for a local path and
// becomes a file:/// address. The pages of a collection are mostly https ones. Blanks, quotes and control characters
// are percent-encoded, so that the browser gets one argument. Does nothing when there is no browser. The shell may pump
// while it starts the browser.
void OpenWebPage(Shell& shell, std::string_view address);

// Opens the file at `path` (UTF-8) in the user's browser, also where its name has a "#", a "?" or a "%", which mean
// something else in an address.
void OpenFileInBrowser(Shell& shell, std::string_view path);

}  // namespace quenlar
