#include "ui/win32/form_window.h"

#include <cassert>
#include <utility>

#include "platform/win32/wide.h"
#include "ui/win32/bar_bindings.h"
#include "ui/win32/make_binding.h"

namespace quenlar::ui {
namespace {

constexpr UINT_PTR kFlushTimer = 1;
constexpr UINT kFlushDelayMs = 60;  // changes within this time are shown together
constexpr UINT kRunPosted = WM_APP + 1;

// The system would scale a dialog by its template, which holds no dialog units. Systems without this call do not.
void TurnOffSystemScaling(HWND window) {
  using SetBehaviour = BOOL(WINAPI*)(HWND, int, int);
  const auto set = reinterpret_cast<SetBehaviour>(
      reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(L"user32.dll"), "SetDialogDpiChangeBehavior")));
  constexpr int kDisableAll = 1;
  if (set) set(window, kDisableAll, kDisableAll);
}

}  // namespace

FormWindow::FormWindow(Form& form, const Dialog& dialog, const Resources& resources)
    : form_(form),
      dialog_(dialog),
      resources_(resources),
      layout_(ReadDialogTemplate(resources.program, form.name())) {}

FormWindow::~FormWindow() {
  assert(!window_);
  DeleteObject(font_);
  DeleteObject(underlined_font_);
}

std::shared_ptr<FormWindow> FormWindow::Create(Form& form, const Dialog& dialog, const Resources& resources,
                                               HWND owner) {
  const std::shared_ptr<FormWindow> made(new FormWindow(form, dialog, resources));
  made->window_ = made->CreateDialogWindow(made->layout_, owner);
  if (!made->window_) return nullptr;
  made->dpi_ = static_cast<int>(GetDpiForWindow(made->window_));
  made->LoadIcons();
  made->ShowCaption();
  made->AddToSystemMenu();
  made->CreatePages();
  made->MakeFonts();
  made->BindControls();
  made->PlaceFirst(owner);
  return made;
}

HWND FormWindow::CreateDialogWindow(const DialogTemplate& dialog, HWND parent) {
  const HWND window =
      CreateDialogIndirectParamW(resources_.program, reinterpret_cast<const DLGTEMPLATE*>(dialog.memory.data()), parent,
                                 Procedure, reinterpret_cast<LPARAM>(this));
  if (window) TurnOffSystemScaling(window);
  return window;
}

void FormWindow::CreatePages() {
  for (const Control* control : form_.Controls()) {
    if (!HasDialog(resources_.program, control->name())) continue;
    DialogTemplate layout = ReadDialogTemplate(resources_.program, control->name());
    const HWND window = CreateDialogWindow(layout, window_);
    assert(window);
    EnableThemeDialogTexture(window, ETDT_ENABLETAB);
    // In front of the tab strip, or the strip would paint over it; so the page comes first in the tab order.
    SetWindowPos(window, HWND_TOP, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE | SWP_NOACTIVATE);
    pages_.push_back({control->name(), window, std::move(layout)});
  }
}

// Null for a control that no dialog shows.
HWND FormWindow::FindNative(const std::string& name) const {
  const auto in_dialog = [&](const DialogTemplate& layout, HWND dialog) -> HWND {
    for (const auto& item : layout.items) {
      if (item.name == name) return GetDlgItem(dialog, item.number);
    }
    return nullptr;
  };
  if (const HWND native = in_dialog(layout_, window_)) return native;
  for (const PageWindow& page : pages_) {
    if (page.name == name) return page.window;
    if (const HWND native = in_dialog(page.layout, page.window)) return native;
  }
  return nullptr;
}

void FormWindow::BindControls() {
  for (Control* control : form_.Controls()) {
    const HWND native = FindNative(control->name());
    if (!native) continue;  // a timer, a menu item, a file dialog
    auto binding = MakeBinding(*control, native, *this);
    assert(binding);
    bindings_.push_back(std::move(binding));
    by_window_[native] = bindings_.back().get();
    if (auto* tabs = dynamic_cast<TabStripBinding*>(bindings_.back().get())) tabs_ = tabs;
  }
  for (const auto& binding : bindings_) binding->Start();
}

void FormWindow::AddToSystemMenu() {
  if (form_.system_menu.empty()) return;
  const HMENU menu = GetSystemMenu(window_, FALSE);
  AppendMenuW(menu, MF_SEPARATOR, 0, nullptr);
  for (std::size_t i = 0; i < form_.system_menu.size(); ++i) {
    AppendMenuW(menu, MF_STRING, SystemMenuNumber(i), win32::ToWide(form_.system_menu[i]->text()).c_str());
  }
}

// True for an entry of the form's own. The menu can be opened from the task bar too, also while a modal window stands
// in front; then nothing happens.
bool FormWindow::ChooseInSystemMenu(WPARAM command) {
  for (std::size_t i = 0; i < form_.system_menu.size(); ++i) {
    if ((command & ~WPARAM{0xF}) != SystemMenuNumber(i)) continue;
    const MenuItem& item = *form_.system_menu[i];
    if (IsWindowEnabled(window_) && item.enabled() && item.Click) item.Click();
    return true;
  }
  return false;
}

void FormWindow::LoadIcons() {
  for (const auto& [size, wparam] : {std::pair(SM_CXICON, ICON_BIG), std::pair(SM_CXSMICON, ICON_SMALL)}) {
    const int pixels = GetSystemMetricsForDpi(size, static_cast<UINT>(dpi_));
    const HANDLE icon =
        LoadImageW(resources_.program, MAKEINTRESOURCEW(resources_.icon), IMAGE_ICON, pixels, pixels, LR_SHARED);
    SendMessageW(window_, WM_SETICON, static_cast<WPARAM>(wparam), reinterpret_cast<LPARAM>(icon));
  }
}

HICON FormWindow::MakeIcon(int width, int height) const {
  return static_cast<HICON>(
      LoadImageW(resources_.program, MAKEINTRESOURCEW(resources_.icon), IMAGE_ICON, width, height, LR_DEFAULTCOLOR));
}

void FormWindow::MakeFonts() {
  NONCLIENTMETRICSW metrics{};
  metrics.cbSize = sizeof metrics;
  SystemParametersInfoForDpi(SPI_GETNONCLIENTMETRICS, sizeof metrics, &metrics, 0, static_cast<UINT>(dpi_));
  const HFONT old_font = std::exchange(font_, CreateFontIndirectW(&metrics.lfMessageFont));
  metrics.lfMessageFont.lfUnderline = TRUE;
  const HFONT old_underlined = std::exchange(underlined_font_, CreateFontIndirectW(&metrics.lfMessageFont));
  const auto give = [](HWND child, LPARAM font) -> BOOL {
    SendMessageW(child, WM_SETFONT, static_cast<WPARAM>(font), TRUE);
    return TRUE;
  };
  EnumChildWindows(window_, give, reinterpret_cast<LPARAM>(font_));
  DeleteObject(old_font);
  DeleteObject(old_underlined);
}

void FormWindow::Show() {
  if (IsIconic(window_)) {
    ShowWindow(window_, SW_RESTORE);
  } else {
    ShowWindow(window_, SW_SHOW);
    // The first time the system puts the wish of the program that started this one in its place, which may be "hidden".
    if (!IsWindowVisible(window_)) ShowWindow(window_, SW_SHOW);
  }
  SetForegroundWindow(window_);
}

void FormWindow::Hide() { ShowWindow(window_, SW_HIDE); }

void FormWindow::ShowCaption() { SetWindowTextW(window_, win32::ToWide(form_.caption()).c_str()); }

void FormWindow::Destroy() {
  const auto self = shared_from_this();
  bindings_.clear();
  by_window_.clear();
  tabs_ = nullptr;
  posted_.clear();
  const HWND owner = GetWindow(window_, GW_OWNER);
  const bool active = GetActiveWindow() == window_;
  DestroyWindow(std::exchange(window_, nullptr));
  if (owner && active) SetActiveWindow(owner);
}

void FormWindow::RequestFlush() {
  if (std::exchange(flush_requested_, true)) return;
  SetTimer(window_, kFlushTimer, kFlushDelayMs, nullptr);
}

void FormWindow::FlushAll() {
  KillTimer(window_, kFlushTimer);
  flush_requested_ = false;
  for (const auto& binding : bindings_) binding->Flush();
}

void FormWindow::Post(std::function<void()> task) {
  posted_.push_back(std::move(task));
  PostMessageW(window_, kRunPosted, 0, 0);
}

void FormWindow::RunPosted() {
  if (posted_.empty()) return;
  const auto task = std::move(posted_.front());
  posted_.pop_front();
  task();
}

void FormWindow::FocusOn(HWND control) { MoveFocus(reinterpret_cast<WPARAM>(control), TRUE); }

void FormWindow::FocusNext() { MoveFocus(0, FALSE); }

void FormWindow::MoveFocus(WPARAM w, LPARAM l) {
  const bool before = std::exchange(moving_focus_, true);
  SendMessageW(window_, WM_NEXTDLGCTL, w, l);
  moving_focus_ = before;
}

ControlBinding* FormWindow::BindingOf(HWND control) const {
  const auto found = by_window_.find(control);
  return found == by_window_.end() ? nullptr : found->second;
}

bool FormWindow::FilterKey(const MSG& message) {
  if (message.message == WM_SYSCHAR && tabs_) return tabs_->ChooseByKey(static_cast<wchar_t>(message.wParam));
  if (message.message != WM_KEYDOWN) return false;
  const bool control = GetKeyState(VK_CONTROL) < 0;
  if (tabs_ && control && (message.wParam == VK_TAB || message.wParam == VK_NEXT || message.wParam == VK_PRIOR)) {
    const bool back = message.wParam == VK_PRIOR || (message.wParam == VK_TAB && GetKeyState(VK_SHIFT) < 0);
    tabs_->Step(back ? -1 : 1);
    return true;
  }
  if (message.wParam == VK_F1 && form_.Help) {
    form_.Help();
    return true;
  }
  ControlBinding* binding = BindingOf(message.hwnd);
  if (!binding) binding = BindingOf(GetParent(message.hwnd));  // the edit box of a combo box
  return binding && binding->OnKey(message.wParam);
}

// Not while a modal window or a message box stands in front.
void FormWindow::Close() {
  if (IsWindowEnabled(window_)) form_.Close();
}

INT_PTR CALLBACK FormWindow::Procedure(HWND window, UINT message, WPARAM w, LPARAM l) {
  if (message == WM_INITDIALOG) {
    SetWindowLongPtrW(window, DWLP_USER, l);
    auto* created = reinterpret_cast<FormWindow*>(l);
    if (!created->window_) created->window_ = window;
    return FALSE;  // the form decides about the focus
  }
  auto* form = reinterpret_cast<FormWindow*>(GetWindowLongPtrW(window, DWLP_USER));
  if (!form || !form->window_) return FALSE;
  const auto alive = form->shared_from_this();  // a handler may close the window
  return alive->OnMessage(window, message, w, l);
}

INT_PTR FormWindow::OnMessage(HWND window, UINT message, WPARAM w, LPARAM l) {
  if (window == window_) {
    if (const INT_PTR done = OnWindowMessage(message, w, l)) return done;
  }
  return OnControlMessage(window, message, w, l);
}

INT_PTR FormWindow::OnWindowMessage(UINT message, WPARAM w, LPARAM l) {
  switch (message) {
    case WM_CLOSE:
      Close();
      return TRUE;
    case WM_SYSCOMMAND:
      return ChooseInSystemMenu(w);
    case WM_TIMER:
      if (w == kFlushTimer) FlushAll();
      return TRUE;
    case kRunPosted:
      RunPosted();
      return TRUE;
    case WM_SIZE:
      if (w != SIZE_MINIMIZED) OnSize();
      return TRUE;
    case WM_ACTIVATE:
    case WM_SETFOCUS:
      // The system's own handling gives the focus back; it asks here again, for a change of it.
      if (std::exchange(moving_focus_, true)) return FALSE;
      DefDlgProcW(window_, message, w, l);
      moving_focus_ = false;
      return TRUE;
    case WM_GETMINMAXINFO: {
      const SIZE minimum = MinimumSize();
      reinterpret_cast<MINMAXINFO*>(l)->ptMinTrackSize = {minimum.cx, minimum.cy};
      return TRUE;
    }
    case WM_DPICHANGED:
      OnDpiChanged(HIWORD(w), *reinterpret_cast<const RECT*>(l));
      return TRUE;
    case WM_SETTINGCHANGE:
    case WM_THEMECHANGED:
      MakeFonts();
      LayOut();
      return FALSE;
    case WM_SYSCOLORCHANGE: {
      // The system tells top-level windows alone, but the common controls keep its colours too.
      const auto tell = [](HWND child, LPARAM) -> BOOL {
        SendMessageW(child, WM_SYSCOLORCHANGE, 0, 0);
        return TRUE;
      };
      EnumChildWindows(window_, tell, 0);
      return FALSE;
    }
    default:
      return FALSE;
  }
}

INT_PTR FormWindow::OnControlMessage(HWND window, UINT message, WPARAM w, LPARAM l) {
  switch (message) {
    case WM_COMMAND:
      if (ControlBinding* binding = BindingOf(reinterpret_cast<HWND>(l))) {
        binding->OnCommand(HIWORD(w));
      } else if (LOWORD(w) == IDCANCEL && !(GetWindowLongPtrW(window_, GWL_STYLE) & WS_MINIMIZEBOX)) {
        Close();  // Esc closes a dialog; the main window stays
      }
      return TRUE;
    case WM_NOTIFY: {
      const auto& header = *reinterpret_cast<const NMHDR*>(l);
      ControlBinding* binding = BindingOf(header.hwndFrom);
      if (!binding) return FALSE;
      const LRESULT result = binding->OnNotify(header);
      SetWindowLongPtrW(window, DWLP_MSGRESULT, result);
      return TRUE;
    }
    case WM_CTLCOLORSTATIC: {
      ControlBinding* binding = BindingOf(reinterpret_cast<HWND>(l));
      return binding ? reinterpret_cast<INT_PTR>(binding->OnColor(reinterpret_cast<HDC>(w))) : FALSE;
    }
    case WM_CONTEXTMENU: {
      ControlBinding* binding = BindingOf(reinterpret_cast<HWND>(w));
      if (!binding) return FALSE;
      binding->OnContextMenu({GET_X_LPARAM(l), GET_Y_LPARAM(l)});
      return TRUE;
    }
    case WM_NEXTDLGCTL:
      // A box of several lines asks its page, which would look no further than its own controls.
      if (window == window_) return FALSE;
      SendMessageW(window_, message, w, l);
      return TRUE;
    default:
      return FALSE;
  }
}

}  // namespace quenlar::ui
