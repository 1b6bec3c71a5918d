#include "platform/win32/event_loop.h"

#include <algorithm>
#include <cassert>
#include <memory>
#include <set>
#include <utility>

#include "platform/win32/windows_api.h"

namespace quenlar {
namespace {

constexpr wchar_t kClass[] = L"QuenlarEventLoop";
constexpr UINT kWake = WM_APP + 1;

// The most messages of one pump. It ends even when more keep coming, as from a window that asks to be painted for ever.
constexpr int kMostMessages = 256;

}  // namespace

class Win32Timer final : public LoopTimer {
 public:
  Win32Timer(Win32EventLoop& loop, std::shared_ptr<Win32EventLoop::TimerState> state)
      : loop_(loop), state_(std::move(state)) {}
  ~Win32Timer() override { loop_.Disable(*state_); }
  Win32Timer(const Win32Timer&) = delete;
  Win32Timer& operator=(const Win32Timer&) = delete;

  void SetEnabled(bool enabled) override {
    if (enabled == this->enabled()) return;
    if (enabled) {
      loop_.Enable(state_);
    } else {
      loop_.Disable(*state_);
    }
  }
  [[nodiscard]] bool enabled() const override { return state_->running != 0; }

 private:
  Win32EventLoop& loop_;
  std::shared_ptr<Win32EventLoop::TimerState> state_;
};

struct Win32EventLoop::WindowProcedure {
  static LRESULT CALLBACK Call(HWND window, UINT message, WPARAM w, LPARAM l) {
    auto* loop = reinterpret_cast<Win32EventLoop*>(GetWindowLongPtrW(window, GWLP_USERDATA));
    if (!loop || (message != WM_TIMER && message != kWake)) return DefWindowProcW(window, message, w, l);
    if (message == WM_TIMER) {
      loop->Tick(w);
    } else {
      // Pump handles these messages itself, so here a message loop of the system has delivered one.
      {
        const std::lock_guard lock(loop->mutex_);
        loop->wake_posted_ = false;
      }
      loop->RunTasks(loop->NextTask());
    }
    return 0;
  }
};

Win32EventLoop::Win32EventLoop() {
  WNDCLASSW kind{};
  kind.lpfnWndProc = WindowProcedure::Call;
  kind.hInstance = GetModuleHandleW(nullptr);
  kind.lpszClassName = kClass;
  RegisterClassW(&kind);  // fails where another loop of this process has done it
  window_ = CreateWindowExW(0, kClass, L"", 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr, kind.hInstance, nullptr);
  assert(window_);
  SetWindowLongPtrW(window_, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(this));
}

Win32EventLoop::~Win32EventLoop() { DestroyWindow(window_); }

void Win32EventLoop::Yield() { Pump(); }

void Win32EventLoop::Wait(std::chrono::milliseconds limit) {
  constexpr std::int64_t kLongest = 0x7FFFFFFF;
  const auto time = std::clamp<std::int64_t>(limit.count(), 0, kLongest);
  if (time > 0) MsgWaitForMultipleObjectsEx(0, nullptr, static_cast<DWORD>(time), QS_ALLINPUT, MWMO_INPUTAVAILABLE);
  Pump();
}

void Win32EventLoop::Post(std::function<void()> task) {
  {
    const std::lock_guard lock(mutex_);
    tasks_.push_back(std::move(task));
    ++next_task_;
  }
  Wake();
}

std::unique_ptr<LoopTimer> Win32EventLoop::MakeTimer(std::chrono::milliseconds interval, std::function<void()> tick) {
  auto state = std::make_shared<TimerState>();
  state->tick = std::move(tick);
  state->interval = static_cast<unsigned>(std::clamp<std::int64_t>(interval.count(), 1, USER_TIMER_MAXIMUM));
  return std::make_unique<Win32Timer>(*this, std::move(state));
}

void Win32EventLoop::AddMessageFilter(std::function<bool(void*)> filter) { filters_.push_back(std::move(filter)); }

// Delivers what has arrived before the call. What arrives meanwhile may wait for the next pump. So each timer ticks
// about once, and a task that posts another one does not keep the pump going.
void Win32EventLoop::Pump() {
  const std::uint64_t end = NextTask();
  RunTasks(end);
  std::set<WPARAM> ticked;
  MSG message;
  for (int count = 0; count < kMostMessages && PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE); ++count) {
    if (message.hwnd == window_ && message.message == kWake) {
      const std::lock_guard lock(mutex_);
      wake_posted_ = false;
      continue;
    }
    if (message.message == WM_QUIT) {
      quit_ = true;
      continue;
    }
    // While this message is handled, a message loop of the system's may run and has to find the waiting tasks.
    Wake();
    Dispatch(&message);
    if (message.hwnd == window_ && message.message == WM_TIMER && !ticked.insert(message.wParam).second) break;
  }
  Wake();
}

void Win32EventLoop::Dispatch(const void* message) {
  MSG copy = *static_cast<const MSG*>(message);
  for (std::size_t i = 0; i < filters_.size(); ++i) {
    if (filters_[i](&copy)) return;
  }
  TranslateMessage(&copy);
  DispatchMessageW(&copy);
}

std::uint64_t Win32EventLoop::NextTask() {
  const std::lock_guard lock(mutex_);
  return next_task_;
}

void Win32EventLoop::RunTasks(std::uint64_t end) {
  for (;;) {
    std::function<void()> task;
    {
      const std::lock_guard lock(mutex_);
      if (tasks_.empty() || next_task_ - tasks_.size() >= end) return;
      task = std::move(tasks_.front());
      tasks_.pop_front();
    }
    Wake();
    task();
  }
}

// Makes sure that one wake message is in the system's queue while tasks wait. There is never a second one, because that
// queue is finite.
void Win32EventLoop::Wake() {
  const std::lock_guard lock(mutex_);
  if (!tasks_.empty() && !wake_posted_) wake_posted_ = PostMessageW(window_, kWake, 0, 0) != 0;
}

void Win32EventLoop::Enable(const std::shared_ptr<TimerState>& state) {
  // A number of its own each time: a tick of the time before may still be in the queue.
  state->running = ++last_timer_;
  timers_[state->running] = state;
  SetTimer(window_, state->running, state->interval, nullptr);
}

void Win32EventLoop::Disable(TimerState& state) {
  if (state.running == 0) return;
  KillTimer(window_, state.running);
  timers_.erase(std::exchange(state.running, 0));
}

void Win32EventLoop::Tick(std::uintptr_t timer) {
  const auto found = timers_.find(timer);
  if (found == timers_.end() || found->second->ticking) return;
  const auto state = found->second;  // the tick may destroy its timer
  const auto tick_ends = [](TimerState* ticked) { ticked->ticking = false; };
  const std::unique_ptr<TimerState, decltype(tick_ends)> ticking(state.get(), tick_ends);  // by an exception, too
  state->ticking = true;
  state->tick();
}

}  // namespace quenlar
