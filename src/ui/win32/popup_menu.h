// Shows a popup menu made of menu item models.
#pragma once

#include <vector>

#include "ui/controls.h"
#include "ui/win32/windows_api.h"

namespace quenlar::ui {

// At the pointer; pumps until the user has chosen or gone elsewhere, then calls the chosen item's Click. `owner` is a
// window of this thread; it is brought to the foreground, or a click elsewhere would not close the menu.
void ShowPopupMenu(HWND owner, const std::vector<MenuItem*>& items);

}  // namespace quenlar::ui
