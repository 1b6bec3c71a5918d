// The part of FormWindow that gives the window and its controls their places.
#include <algorithm>

#include "ui/win32/bar_bindings.h"
#include "ui/win32/form_window.h"

namespace quenlar::ui {

// The outer size of a window whose inside has this size at 96 dots per inch.
SIZE FormWindow::OuterSize(SIZE size) const {
  RECT outer{0, 0, Scaled(size.cx), Scaled(size.cy)};
  AdjustWindowRectExForDpi(&outer, static_cast<DWORD>(GetWindowLongPtrW(window_, GWL_STYLE)), FALSE,
                           static_cast<DWORD>(GetWindowLongPtrW(window_, GWL_EXSTYLE)), static_cast<UINT>(dpi_));
  return {outer.right - outer.left, outer.bottom - outer.top};
}

SIZE FormWindow::MinimumSize() const {
  if (dialog_.first.cx > 0) return {Scaled(layout_.size.cx), Scaled(layout_.size.cy)};
  return OuterSize(layout_.size);
}

// A window with an owner opens in its middle, another one in the middle of its screen; nothing lies off the screen, as
// long as the screen has room for the smallest size.
void FormWindow::PlaceFirst(HWND owner) {
  SIZE size = MinimumSize();
  size.cx += Scaled(dialog_.wider);
  if (dialog_.first.cx > 0) size = {Scaled(dialog_.first.cx), Scaled(dialog_.first.cy)};
  MONITORINFO monitor{};
  monitor.cbSize = sizeof monitor;
  GetMonitorInfoW(MonitorFromWindow(owner ? owner : window_, MONITOR_DEFAULTTONEAREST), &monitor);
  const SIZE minimum = MinimumSize();
  size.cx = std::max(minimum.cx, std::min(size.cx, monitor.rcWork.right - monitor.rcWork.left));
  size.cy = std::max(minimum.cy, std::min(size.cy, monitor.rcWork.bottom - monitor.rcWork.top));
  RECT around = monitor.rcWork;
  if (owner && !IsIconic(owner)) GetWindowRect(owner, &around);
  const LONG right_most = std::max(monitor.rcWork.left, monitor.rcWork.right - size.cx);
  const LONG lowest = std::max(monitor.rcWork.top, monitor.rcWork.bottom - size.cy);
  const LONG x = std::clamp((around.left + around.right - size.cx) / 2, monitor.rcWork.left, right_most);
  const LONG y = std::clamp((around.top + around.bottom - size.cy) / 2, monitor.rcWork.top, lowest);
  SetWindowPos(window_, nullptr, x, y, size.cx, size.cy, SWP_NOZORDER | SWP_NOACTIVATE);
  LayOut();
}

// A window manager outside the system may have made the window smaller than the system was asked to allow.
void FormWindow::OnSize() {
  RECT outer;
  GetWindowRect(window_, &outer);
  const SIZE minimum = MinimumSize();
  const LONG width = outer.right - outer.left, height = outer.bottom - outer.top;
  const bool resizable = GetWindowLongPtrW(window_, GWL_STYLE) & WS_THICKFRAME;
  if (resizable && (width < minimum.cx || height < minimum.cy)) {
    SetWindowPos(window_, nullptr, 0, 0, std::max(width, minimum.cx), std::max(height, minimum.cy),
                 SWP_NOZORDER | SWP_NOMOVE | SWP_NOACTIVATE);
    return;  // the layout follows with the message about this change
  }
  LayOut();
}

void FormWindow::OnDpiChanged(int dpi, const RECT& suggested) {
  dpi_ = dpi;
  LoadIcons();
  MakeFonts();
  SetWindowPos(window_, nullptr, suggested.left, suggested.top, suggested.right - suggested.left,
               suggested.bottom - suggested.top, SWP_NOZORDER | SWP_NOACTIVATE);
  LayOut();
}

void FormWindow::LayOut() {
  if (bindings_.empty()) return;
  RECT outer;
  GetWindowRect(window_, &outer);
  const SIZE minimum = MinimumSize();
  const SIZE grown{std::max(0L, outer.right - outer.left - minimum.cx),
                   std::max(0L, outer.bottom - outer.top - minimum.cy)};
  PlaceItems(window_, layout_, grown);
  LayOutPages();
  for (const auto& binding : bindings_) binding->OnPlaced(static_cast<int>(grown.cx));
  RedrawWindow(window_, nullptr, nullptr, RDW_INVALIDATE | RDW_ERASE | RDW_ALLCHILDREN);
}

void FormWindow::LayOutPages() {
  if (!tabs_) return;
  const RECT room = tabs_->PageRoom();
  for (const PageWindow& page : pages_) {
    SetWindowPos(page.window, nullptr, room.left, room.top, room.right - room.left, room.bottom - room.top,
                 SWP_NOZORDER | SWP_NOACTIVATE);
    PlaceItems(page.window, page.layout, SIZE{});
  }
}

void FormWindow::PlaceItems(HWND parent, const DialogTemplate& layout, SIZE grown) {
  HDWP places = BeginDeferWindowPos(static_cast<int>(layout.items.size()));
  HWND child = GetWindow(parent, GW_CHILD);
  for (const auto& item : layout.items) {
    // Pages stand before the controls of the template.
    while (child && GetDlgCtrlID(child) != item.number) child = GetWindow(child, GW_HWNDNEXT);
    if (!child) break;
    const RECT& place = item.place;
    places = DeferWindowPos(places, child, nullptr, Scaled(place.left) + MulDiv(grown.cx, item.move_x, 100),
                            Scaled(place.top) + MulDiv(grown.cy, item.move_y, 100),
                            Scaled(place.right - place.left) + MulDiv(grown.cx, item.grow_x, 100),
                            Scaled(place.bottom - place.top) + MulDiv(grown.cy, item.grow_y, 100),
                            SWP_NOZORDER | SWP_NOACTIVATE | SWP_NOCOPYBITS);
    child = GetWindow(child, GW_HWNDNEXT);
  }
  EndDeferWindowPos(places);
}

}  // namespace quenlar::ui
