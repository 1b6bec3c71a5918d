// Shows a popup menu made of menu item models.
#pragma once

#include <vector>

#include "ui/controls.h"
#include "ui/win32/windows_api.h"

namespace quenlar::ui {

// Shows the menu at the pointer. Pumps until the user has chosen an item or left the menu, and then calls the Click of
// the chosen item. `owner` is a window of this thread. It is brought to the foreground, because otherwise a click
// outside would not close the menu.
void ShowPopupMenu(HWND owner, const std::vector<MenuItem*>& items);

}  // namespace quenlar::ui
