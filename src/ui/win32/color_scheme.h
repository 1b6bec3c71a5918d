// Whether the user's colour scheme allows the forms their own colours.
#pragma once

#include "ui/win32/windows_api.h"

namespace quenlar::ui {

// Returns whether the user has chosen high contrast. Only colours of the system may be used then.
[[nodiscard]] inline bool IsHighContrast() {
  HIGHCONTRASTW state{};
  state.cbSize = sizeof state;
  return SystemParametersInfoW(SPI_GETHIGHCONTRAST, sizeof state, &state, 0) && (state.dwFlags & HCF_HIGHCONTRASTON);
}

// Returns whether a colour of the system (COLOR_...) is too dark for a dark text on it, such as the blue of links.
[[nodiscard]] inline bool IsDarkBackground(int system_color) {
  const COLORREF color = GetSysColor(system_color);
  return 299 * GetRValue(color) + 587 * GetGValue(color) + 114 * GetBValue(color) < 128 * 1000;
}

}  // namespace quenlar::ui
