// Which of the forms' own colours the user's colour scheme leaves room for.
#pragma once

#include "ui/win32/windows_api.h"

namespace quenlar::ui {

// Whether the user wants the system's own high-contrast colours, so that no others may be used.
[[nodiscard]] inline bool IsHighContrast() {
  HIGHCONTRASTW state{};
  state.cbSize = sizeof state;
  return SystemParametersInfoW(SPI_GETHIGHCONTRAST, sizeof state, &state, 0) && (state.dwFlags & HCF_HIGHCONTRASTON);
}

// Whether a dark colour of the forms, such as blue, cannot be read on this colour of the system (COLOR_...).
[[nodiscard]] inline bool IsDarkBackground(int system_color) {
  const COLORREF color = GetSysColor(system_color);
  return 299 * GetRValue(color) + 587 * GetGValue(color) + 114 * GetBValue(color) < 128 * 1000;
}

}  // namespace quenlar::ui
