#include "window/window.h"

#include <array>

#include "window/remote_memory.h"

namespace quenlar::window_test {
namespace {

constexpr UINT kSendLimitMs = 60000;
constexpr int kTextUnits = 1024;

HWND FindControl(HWND parent, int id) {
  if (const HWND found = GetDlgItem(parent, id)) return found;
  struct Search {
    int id;
    HWND found;
  } search{id, nullptr};
  EnumChildWindows(
      parent,
      [](HWND child, LPARAM l) -> BOOL {
        auto& wanted = *reinterpret_cast<Search*>(l);
        if (GetDlgCtrlID(child) != wanted.id) return TRUE;
        wanted.found = child;
        return FALSE;
      },
      reinterpret_cast<LPARAM>(&search));
  return search.found;
}

// A structure and room for a text behind it, both in the other process.
template <typename Structure>
struct WithText {
  Structure structure{};
  std::array<wchar_t, kTextUnits> text{};
};

}  // namespace

bool WaitUntil(const std::function<bool()>& condition, std::chrono::seconds limit) {
  const auto end = std::chrono::steady_clock::now() + limit;
  while (!condition()) {
    if (std::chrono::steady_clock::now() > end) return false;
    Sleep(10);
  }
  return true;
}

std::wstring Wide(const std::string& utf8) {
  std::wstring wide(utf8.size(), L'\0');
  wide.resize(static_cast<std::size_t>(MultiByteToWideChar(CP_UTF8, 0, utf8.data(), static_cast<int>(utf8.size()),
                                                           wide.data(), static_cast<int>(wide.size()))));
  return wide;
}

std::string Utf8(const std::wstring& wide) {
  std::string utf8(wide.size() * 3, '\0');
  utf8.resize(
      static_cast<std::size_t>(WideCharToMultiByte(CP_UTF8, 0, wide.data(), static_cast<int>(wide.size()), utf8.data(),
                                                   static_cast<int>(utf8.size()), nullptr, nullptr)));
  return utf8;
}

LRESULT Window::Send(UINT message, WPARAM w, LPARAM l) const {
  DWORD_PTR result = 0;
  SendMessageTimeoutW(handle_, message, w, l, SMTO_NORMAL, kSendLimitMs, &result);
  return static_cast<LRESULT>(result);
}

Window Window::Control(int number) const { return Window(FindControl(handle_, number)); }

std::string Window::ClassName() const {
  wchar_t name[128];
  return Utf8(std::wstring(name, static_cast<std::size_t>(GetClassNameW(handle_, name, std::size(name)))));
}

std::string Window::Text() const {
  std::wstring text(static_cast<std::size_t>(Send(WM_GETTEXTLENGTH)) + 1, L'\0');
  text.resize(static_cast<std::size_t>(Send(WM_GETTEXT, text.size(), reinterpret_cast<LPARAM>(text.data()))));
  return Utf8(text);
}

RECT Window::Place() const {
  RECT place{};
  GetWindowRect(handle_, &place);
  return place;
}

int Window::FocusedControl() const {
  GUITHREADINFO state{};
  state.cbSize = sizeof state;
  if (!GetGUIThreadInfo(GetWindowThreadProcessId(handle_, nullptr), &state)) return 0;
  return state.hwndFocus ? GetDlgCtrlID(state.hwndFocus) : 0;
}

void Window::Type(const std::string& text) const {
  const HWND edit = IsCombo() ? FindWindowExW(handle_, nullptr, L"Edit", nullptr) : handle_;
  Window(edit).Send(EM_SETSEL, 0, -1);
  // Unlike WM_SETTEXT this counts as typing in boxes of several lines and in combo boxes too.
  Window(edit).Send(EM_REPLACESEL, TRUE, reinterpret_cast<LPARAM>(Wide(text).c_str()));
}

std::vector<int> Window::TabStops() const {
  std::vector<int> stops;
  const HWND first = GetNextDlgTabItem(handle_, nullptr, FALSE);
  HWND control = first;
  do {
    stops.push_back(GetDlgCtrlID(control));
    control = GetNextDlgTabItem(handle_, control, FALSE);
  } while (control && control != first);
  return stops;
}

void Window::Press(int virtual_key) const {
  PostMessageW(handle_, WM_KEYDOWN, static_cast<WPARAM>(virtual_key), 1);
  PostMessageW(handle_, WM_KEYUP, static_cast<WPARAM>(virtual_key), static_cast<LPARAM>(0xC0000001));
}

void Window::PressLetter(char letter) const { PostMessageW(handle_, WM_CHAR, static_cast<WPARAM>(letter), 1); }

void Window::Click() const { PostMessageW(handle_, BM_CLICK, 0, 0); }

void Window::MouseClick(POINT inside) const {
  const LPARAM place = MAKELPARAM(inside.x, inside.y);
  PostMessageW(handle_, WM_LBUTTONDOWN, MK_LBUTTON, place);
  PostMessageW(handle_, WM_LBUTTONUP, 0, place);
}

void Window::MouseDoubleClick(POINT inside) const {
  const LPARAM place = MAKELPARAM(inside.x, inside.y);
  MouseClick(inside);
  PostMessageW(handle_, WM_LBUTTONDBLCLK, MK_LBUTTON, place);
  PostMessageW(handle_, WM_LBUTTONUP, 0, place);
}

void Window::MouseRightClick(POINT inside) const {
  const LPARAM place = MAKELPARAM(inside.x, inside.y);
  PostMessageW(handle_, WM_RBUTTONDOWN, MK_RBUTTON, place);
  PostMessageW(handle_, WM_RBUTTONUP, 0, place);
}

std::vector<std::string> Window::Items() const {
  const bool combo = IsCombo();
  std::vector<std::string> items;
  const LRESULT count = Send(combo ? CB_GETCOUNT : LB_GETCOUNT);
  for (LRESULT i = 0; i < count; ++i) {
    const auto index = static_cast<WPARAM>(i);
    const LRESULT length = Send(combo ? CB_GETLBTEXTLEN : LB_GETTEXTLEN, index);
    if (length < 0) break;  // it has become shorter meanwhile
    std::wstring text(static_cast<std::size_t>(length) + 1, L'\0');
    Send(combo ? CB_GETLBTEXT : LB_GETTEXT, index, reinterpret_cast<LPARAM>(text.data()));
    text.pop_back();
    items.push_back(Utf8(text));
  }
  return items;
}

// What the combo box itself tells its window when the user has clicked the entry.
void Window::Pick(int index) const {
  Send(CB_SETCURSEL, static_cast<WPARAM>(index));
  const WPARAM id = static_cast<WPARAM>(GetDlgCtrlID(handle_));
  PostMessageW(GetParent(handle_), WM_COMMAND, id | (CBN_SELENDOK << 16), reinterpret_cast<LPARAM>(handle_));
}

void Window::PickListItem(int index) const {
  RemoteMemory memory(handle_, sizeof(RECT));
  Send(LB_GETITEMRECT, static_cast<WPARAM>(index), reinterpret_cast<LPARAM>(memory.place()));
  RECT place{};
  memory.Read(0, &place, sizeof place);
  MouseClick({place.left + 2, place.top + 2});
}

int Window::Rows() const { return static_cast<int>(Send(LVM_GETITEMCOUNT)); }

std::string Window::Cell(int row, int column) const {
  using Asked = WithText<LVITEMW>;
  RemoteMemory memory(handle_, sizeof(Asked));
  Asked asked;
  asked.structure.iSubItem = column;
  asked.structure.cchTextMax = kTextUnits;
  asked.structure.pszText = reinterpret_cast<wchar_t*>(memory.place() + offsetof(Asked, text));
  memory.Write(&asked, sizeof asked);
  Send(LVM_GETITEMTEXTW, static_cast<WPARAM>(row), reinterpret_cast<LPARAM>(memory.place()));
  memory.Read(offsetof(Asked, text), asked.text.data(), sizeof asked.text);
  return Utf8(asked.text.data());
}

std::vector<std::string> Window::Column(int column) const {
  std::vector<std::string> cells;
  for (int row = 0; row < Rows(); ++row) cells.push_back(Cell(row, column));
  return cells;
}

std::vector<int> Window::MarkedRows() const {
  std::vector<int> rows;
  LRESULT row = -1;
  while ((row = Send(LVM_GETNEXTITEM, static_cast<WPARAM>(row), LVNI_SELECTED)) >= 0)
    rows.push_back(static_cast<int>(row));
  return rows;
}

void Window::MarkRow(int row) const {
  RemoteMemory memory(handle_, sizeof(LVITEMW));
  LVITEMW item{};
  item.mask = LVIF_STATE;
  item.state = item.stateMask = LVIS_SELECTED | LVIS_FOCUSED;
  memory.Write(&item, sizeof item);
  Send(LVM_SETITEMSTATE, static_cast<WPARAM>(row), reinterpret_cast<LPARAM>(memory.place()));
}

POINT Window::RowPlace(int row) const {
  RemoteMemory memory(handle_, sizeof(RECT));
  RECT place{};
  place.left = LVIR_LABEL;
  memory.Write(&place, sizeof place);
  Send(LVM_GETITEMRECT, static_cast<WPARAM>(row), reinterpret_cast<LPARAM>(memory.place()));
  memory.Read(0, &place, sizeof place);
  return {place.left + 2, (place.top + place.bottom) / 2};
}

int Window::ColumnWidth(int column) const {
  return static_cast<int>(Send(LVM_GETCOLUMNWIDTH, static_cast<WPARAM>(column)));
}

std::string Window::Panel(int number) const {
  const auto index = static_cast<WPARAM>(number - 1);
  const std::size_t length = LOWORD(Send(SB_GETTEXTLENGTHW, index));
  RemoteMemory memory(handle_, (length + 1) * sizeof(wchar_t));
  Send(SB_GETTEXTW, index, reinterpret_cast<LPARAM>(memory.place()));
  std::wstring text(length, L'\0');
  memory.Read(0, text.data(), length * sizeof(wchar_t));
  return Utf8(text);
}

ControlKeyHeld::ControlKeyHeld(const Window& window) : thread_(GetWindowThreadProcessId(window.handle(), nullptr)) {
  AttachThreadInput(GetCurrentThreadId(), thread_, TRUE);
  Set(0x80);
}

ControlKeyHeld::~ControlKeyHeld() {
  Set(0);
  AttachThreadInput(GetCurrentThreadId(), thread_, FALSE);
}

void ControlKeyHeld::Set(BYTE state) const {
  BYTE keys[256] = {};
  GetKeyboardState(keys);
  keys[VK_CONTROL] = keys[VK_LCONTROL] = state;
  SetKeyboardState(keys);
}

std::string ClipboardText() {
  std::string text;
  if (!OpenClipboard(nullptr)) return text;
  if (const HANDLE data = GetClipboardData(CF_UNICODETEXT)) {
    text = Utf8(static_cast<const wchar_t*>(GlobalLock(data)));
    GlobalUnlock(data);
  }
  CloseClipboard();
  return text;
}

void ClearClipboard() {
  if (!OpenClipboard(nullptr)) return;
  EmptyClipboard();
  CloseClipboard();
}

}  // namespace quenlar::window_test
