// The record by which the system knows the icon.
#pragma once

#include "platform/win32/windows_api.h"

namespace quenlar::win32 {

// The number of the message by which the icon reports the mouse: that of a mouse move, which a window that is never
// shown does not get otherwise.
inline constexpr UINT kTrayCallbackMessage = 512;

// The oldest form of the record: message, icon and tip are valid, and the tip is empty. The icon's own handle, cut to
// 32 bits, serves as the number of the icon.
[[nodiscard]] NOTIFYICONDATAA TrayRecord(HWND window, HICON icon);

}  // namespace quenlar::win32
