// A task bar that writes down what it is asked, for tests of the icon in the notification area.
#pragma once

#include <future>
#include <mutex>
#include <thread>
#include <vector>

#include "platform/win32/tray_record.h"

namespace quenlar {

// A window that the system takes for the task bar, in a thread of its own, so that it answers while the test waits. Not
// beside a real one.
class FakeTaskBar {
 public:
  FakeTaskBar() {
    std::promise<HWND> made;
    std::future<HWND> window = made.get_future();
    thread_ = std::thread([this, &made] { Run(made); });
    window_ = window.get();
  }
  ~FakeTaskBar() {
    PostMessageW(window_, WM_CLOSE, 0, 0);
    thread_.join();
  }
  FakeTaskBar(const FakeTaskBar&) = delete;
  FakeTaskBar& operator=(const FakeTaskBar&) = delete;

  // While it is busy it takes no icon.
  void SetBusy(bool busy) {
    const std::lock_guard lock(mutex_);
    busy_ = busy;
  }

  [[nodiscard]] bool has_icon() const {
    const std::lock_guard lock(mutex_);
    return has_icon_;
  }
  // NIM_ADD, NIM_DELETE ..., in the order of the calls. A call returns to its caller after it has been written down.
  [[nodiscard]] std::vector<ULONG_PTR> asked() const {
    const std::lock_guard lock(mutex_);
    return asked_;
  }

 private:
  void Run(std::promise<HWND>& made) {
    WNDCLASSW kind{};
    kind.lpfnWndProc = Procedure;
    kind.hInstance = GetModuleHandleW(nullptr);
    kind.lpszClassName = L"Shell_TrayWnd";
    RegisterClassW(&kind);  // fails where it has been done before
    const HWND window =
        CreateWindowExW(0, kind.lpszClassName, L"", WS_POPUP, 0, 0, 0, 0, nullptr, nullptr, kind.hInstance, nullptr);
    SetWindowLongPtrW(window, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(this));
    made.set_value(window);
    MSG message;
    while (GetMessageW(&message, nullptr, 0, 0) > 0) DispatchMessageW(&message);
  }

  static LRESULT CALLBACK Procedure(HWND window, UINT message, WPARAM w, LPARAM l) {
    auto* self = reinterpret_cast<FakeTaskBar*>(GetWindowLongPtrW(window, GWLP_USERDATA));
    if (message == WM_DESTROY) PostQuitMessage(0);
    if (!self || message != WM_COPYDATA) return DefWindowProcW(window, message, w, l);
    const std::lock_guard lock(self->mutex_);
    const ULONG_PTR asked = reinterpret_cast<const COPYDATASTRUCT*>(l)->dwData;
    self->asked_.push_back(asked);
    if (asked == NIM_ADD && !self->busy_) self->has_icon_ = true;
    if (asked == NIM_DELETE) self->has_icon_ = false;
    return self->has_icon_ && !self->busy_;
  }

  std::thread thread_;
  HWND window_ = nullptr;
  mutable std::mutex mutex_;
  bool busy_ = false;
  bool has_icon_ = false;
  std::vector<ULONG_PTR> asked_;
};

}  // namespace quenlar
