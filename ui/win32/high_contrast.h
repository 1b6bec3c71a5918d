// Whether the user wants the system's own high-contrast colours, so that no others may be used.
#pragma once

#include "ui/win32/windows_api.h"

namespace quenlar::ui {

[[nodiscard]] inline bool IsHighContrast() {
  HIGHCONTRASTW state{};
  state.cbSize = sizeof state;
  return SystemParametersInfoW(SPI_GETHIGHCONTRAST, sizeof state, &state, 0) && (state.dwFlags & HCF_HIGHCONTRASTON);
}

}  // namespace quenlar::ui
