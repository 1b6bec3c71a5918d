#include "ui/win32/popup_menu.h"

#include "platform/win32/wide.h"

namespace quenlar::ui {

void ShowPopupMenu(HWND owner, const std::vector<MenuItem*>& items) {
  const HMENU menu = CreatePopupMenu();
  for (std::size_t i = 0; i < items.size(); ++i) {
    if (items[i]->is_separator()) {
      AppendMenuW(menu, MF_SEPARATOR, 0, nullptr);
    } else if (items[i]->visible()) {
      const UINT state = items[i]->enabled() ? MF_ENABLED : MF_GRAYED;
      AppendMenuW(menu, MF_STRING | state, i + 1, win32::ToWide(items[i]->text()).c_str());
    }
  }
  POINT pointer{};
  GetCursorPos(&pointer);
  SetForegroundWindow(owner);
  const int chosen = TrackPopupMenu(menu, TPM_RETURNCMD | TPM_RIGHTBUTTON, pointer.x, pointer.y, 0, owner, nullptr);
  PostMessageW(owner, WM_NULL, 0, 0);  // lets the system finish the change of the foreground window
  DestroyMenu(menu);
  if (chosen <= 0) return;
  const MenuItem& item = *items[static_cast<std::size_t>(chosen) - 1];
  if (item.enabled() && item.Click) item.Click();
}

}  // namespace quenlar::ui
