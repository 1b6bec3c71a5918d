// The system's clipboard.
#pragma once

#include <string>

namespace quenlar::win32 {

// Replaces what is on the clipboard by this text (UTF-8). Does nothing when another program does not
// let go of the clipboard for a fifth of a second.
void PutOnClipboard(const std::string& text);

}  // namespace quenlar::win32
