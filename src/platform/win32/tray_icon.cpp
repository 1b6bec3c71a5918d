#include "platform/win32/tray_icon.h"

#include <utility>

#include "platform/win32/tray_record.h"

namespace quenlar {
namespace win32 {

static_assert(sizeof(void*) != 4 || NOTIFYICONDATAA_V1_SIZE == 88);
static_assert(sizeof(void*) != 8 || NOTIFYICONDATAA_V1_SIZE == 104);

NOTIFYICONDATAA TrayRecord(HWND window, HICON icon) {
  NOTIFYICONDATAA record{};
  record.cbSize = NOTIFYICONDATAA_V1_SIZE;
  record.hWnd = window;
  record.uID = static_cast<UINT>(reinterpret_cast<UINT_PTR>(icon) & 0xFFFFFFFFu);
  record.uFlags = NIF_MESSAGE | NIF_ICON | NIF_TIP;
  record.uCallbackMessage = kTrayCallbackMessage;
  record.hIcon = icon;
  return record;
}

}  // namespace win32

namespace {

constexpr UINT_PTR kAddTimer = 1;
constexpr UINT kAddAgainMs = 2000;

}  // namespace

struct Win32TrayIcon::Implementation {
  NOTIFYICONDATAA record;
  HWND window = nullptr;
  UINT taskbar_created = 0;
  bool added = false;
  std::function<void()> on_right_button_down;

  // A busy task bar, for example while the user logs on, does not take the icon, so it is asked again.
  void Add() {
    if (!Shell_NotifyIconA(NIM_ADD, &record)) SetTimer(window, kAddTimer, kAddAgainMs, nullptr);
  }

  // The task bar may have taken the icon without answering in time. It does not take it a second time then.
  void AddAgain() {
    if (Shell_NotifyIconA(NIM_MODIFY, &record) || Shell_NotifyIconA(NIM_ADD, &record)) KillTimer(window, kAddTimer);
  }

  static LRESULT CALLBACK Procedure(HWND window, UINT message, WPARAM w, LPARAM l) {
    auto* self = reinterpret_cast<Implementation*>(GetWindowLongPtrW(window, GWLP_USERDATA));
    if (!self) return DefWindowProcW(window, message, w, l);
    if (message == win32::kTrayCallbackMessage) {  // of the only icon that reports to this window
      if (l != WM_RBUTTONDOWN) return 0;
      const auto handler = self->on_right_button_down;  // it may put another one in its place
      if (handler) handler();
      return 0;
    }
    if (message == self->taskbar_created && self->added) self->Add();
    if (message == WM_TIMER && w == kAddTimer) self->AddAgain();
    return DefWindowProcW(window, message, w, l);
  }
};

Win32TrayIcon::Win32TrayIcon(void* icon) : implementation_(std::make_unique<Implementation>()) {
  constexpr wchar_t kClass[] = L"QuenlarTray";
  WNDCLASSW kind{};
  kind.lpfnWndProc = Implementation::Procedure;
  kind.hInstance = GetModuleHandleW(nullptr);
  kind.lpszClassName = kClass;
  RegisterClassW(&kind);  // fails where it has been done before
  auto& self = *implementation_;
  // A top-level window, since only those hear of a new task bar and can come to the foreground for the menu.
  self.window =
      CreateWindowExW(WS_EX_TOOLWINDOW, kClass, L"", WS_POPUP, 0, 0, 0, 0, nullptr, nullptr, kind.hInstance, nullptr);
  self.taskbar_created = RegisterWindowMessageW(L"TaskbarCreated");
  SetWindowLongPtrW(self.window, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(&self));
  // The task bar runs with fewer rights than a program started as administrator.
  for (const UINT message : {self.taskbar_created, win32::kTrayCallbackMessage}) {
    ChangeWindowMessageFilterEx(self.window, message, MSGFLT_ALLOW, nullptr);
  }
  self.record = win32::TrayRecord(self.window, icon ? static_cast<HICON>(icon) : LoadIconW(nullptr, IDI_APPLICATION));
}

Win32TrayIcon::~Win32TrayIcon() {
  RemoveTrayIcon();
  SetWindowLongPtrW(implementation_->window, GWLP_USERDATA, 0);
  DestroyWindow(implementation_->window);
}

void Win32TrayIcon::AddTrayIcon() {
  implementation_->added = true;
  implementation_->Add();
}

void Win32TrayIcon::RemoveTrayIcon() {
  if (!std::exchange(implementation_->added, false)) return;
  KillTimer(implementation_->window, kAddTimer);
  Shell_NotifyIconA(NIM_DELETE, &implementation_->record);
}

void Win32TrayIcon::OnRightButtonDown(std::function<void()> handler) {
  implementation_->on_right_button_down = std::move(handler);
}

void* Win32TrayIcon::window() const { return implementation_->window; }

}  // namespace quenlar
