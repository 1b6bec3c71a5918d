#include "ui/win32/bar_bindings.h"

#include "base/ascii.h"
#include "platform/win32/wide.h"

namespace quenlar::ui {
namespace {

// Widths of the panels at 96 dots per inch and at the smallest window: the first takes what the window grows, the last
// reaches to the window's end.
constexpr int kFirstPanel = 270;
constexpr int kOtherPanel = 110;

}  // namespace

void StatusBarBinding::Start() {
  ControlBinding::Start();
  shown_.assign(model().panels(), std::string());
  OnPlaced(0);  // a panel holds no text before it is there
  Flush();
}

void StatusBarBinding::Apply(Aspect aspect) {
  ControlBinding::Apply(aspect);
  if (aspect == Aspect::kText) host().RequestFlush();
}

void StatusBarBinding::Flush() {
  for (std::size_t i = 0; i < shown_.size(); ++i) {
    if (shown_[i] == model().panel(i + 1)) continue;
    shown_[i] = model().panel(i + 1);
    Send(SB_SETTEXTW, i, win32::ToWide(shown_[i]).c_str());
  }
}

void StatusBarBinding::OnPlaced(int grown) {
  Send(WM_SIZE);  // the bar finds its place at the window's foot by itself
  std::vector<int> right_edges;
  for (std::size_t i = 0; i + 1 < model().panels(); ++i) {
    right_edges.push_back(Scaled(kFirstPanel) + grown + static_cast<int>(i) * Scaled(kOtherPanel));
  }
  right_edges.push_back(-1);
  Send(SB_SETPARTS, right_edges.size(), right_edges.data());
}

void TabStripBinding::Start() {
  ControlBinding::Start();
  for (std::size_t i = 0; i < model().captions().size(); ++i) {
    std::wstring caption = win32::ToWide(model().captions()[i]);
    TCITEMW item{};
    item.mask = TCIF_TEXT;
    item.pszText = caption.data();
    Send(TCM_INSERTITEMW, i, &item);
  }
  Apply(Aspect::kSelection);
}

void TabStripBinding::Apply(Aspect aspect) {
  ControlBinding::Apply(aspect);
  if (aspect == Aspect::kSelection) Send(TCM_SETCURSEL, model().selected());
}

LRESULT TabStripBinding::OnNotify(const NMHDR& header) {
  if (header.code == static_cast<UINT>(TCN_SELCHANGE)) {
    const LRESULT index = Send(TCM_GETCURSEL);
    if (index >= 0) UserSelect(static_cast<std::size_t>(index));
  }
  return 0;
}

bool TabStripBinding::ChooseByKey(wchar_t key) {
  if (key == 0 || key > 127) return false;
  for (std::size_t i = 0; i < model().captions().size(); ++i) {
    const std::size_t mark = model().captions()[i].find('&');
    if (mark == std::string::npos || mark + 1 == model().captions()[i].size()) continue;
    if (ToLower(model().captions()[i][mark + 1]) == ToLower(static_cast<char>(key))) {
      UserSelect(i);
      return true;
    }
  }
  return false;
}

void TabStripBinding::Step(int direction) {
  const int count = static_cast<int>(model().captions().size());
  UserSelect(static_cast<std::size_t>((static_cast<int>(model().selected()) + direction + count) % count));
}

// A page that goes would keep the keyboard, unseen.
void TabStripBinding::UserSelect(std::size_t index) {
  const HWND focus = GetFocus();
  model().Select(index);
  if (focus && !IsWindowVisible(focus)) host().FocusOn(window());
}

RECT TabStripBinding::PageRoom() const {
  RECT room;
  GetWindowRect(window(), &room);
  MapWindowPoints(HWND_DESKTOP, GetParent(window()), reinterpret_cast<POINT*>(&room), 2);
  Send(TCM_ADJUSTRECT, FALSE, &room);
  return room;
}

}  // namespace quenlar::ui
