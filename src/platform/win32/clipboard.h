// The system's clipboard.
#pragma once

#include <string>

namespace quenlar::win32 {

// Replaces the contents of the clipboard with `text` (UTF-8). Does nothing when another program holds the clipboard for
// longer than a fifth of a second.
void PutOnClipboard(const std::string& text);

}  // namespace quenlar::win32
