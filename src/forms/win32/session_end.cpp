#include "forms/win32/session_end.h"

#include <utility>

namespace quenlar::ui {

SessionEnd::SessionEnd(HINSTANCE program, std::function<void()> save) : save_(std::move(save)) {
  constexpr wchar_t kClass[] = L"QuenlarSessionEnd";
  WNDCLASSW kind{};
  kind.lpfnWndProc = Procedure;
  kind.hInstance = program;
  kind.lpszClassName = kClass;
  RegisterClassW(&kind);
  window_ = CreateWindowExW(WS_EX_TOOLWINDOW, kClass, L"", WS_POPUP, 0, 0, 0, 0, nullptr, nullptr, program, nullptr);
  SetWindowLongPtrW(window_, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(this));
}

SessionEnd::~SessionEnd() { DestroyWindow(window_); }

LRESULT CALLBACK SessionEnd::Procedure(HWND window, UINT message, WPARAM w, LPARAM l) {
  auto* self = reinterpret_cast<SessionEnd*>(GetWindowLongPtrW(window, GWLP_USERDATA));
  if (self && message == WM_ENDSESSION && w) {
    self->save_();
    return 0;
  }
  return DefWindowProcW(window, message, w, l);  // which agrees to the end of the session
}

}  // namespace quenlar::ui
