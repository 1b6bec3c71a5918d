// The event loop of a thread with windows: its message queue.
#pragma once

#include <cstdint>
#include <deque>
#include <map>
#include <mutex>
#include <vector>

#include "platform/event_loop.h"

struct HWND__;  // behind the system's window handle

namespace quenlar {

// Posted tasks and timers are messages to a hidden window. So the message loops of the system itself, such as those of
// menus, message boxes, file dialogs and a window that is being dragged, deliver them too. Timers are as coarse as
// those of the system (10 to 16 ms). Only Post may be called from other threads.
class Win32EventLoop final : public EventLoop {
 public:
  Win32EventLoop();
  ~Win32EventLoop() override;
  Win32EventLoop(const Win32EventLoop&) = delete;
  Win32EventLoop& operator=(const Win32EventLoop&) = delete;

  void Yield() override;
  void Wait(std::chrono::milliseconds limit) override;
  void Post(std::function<void()> task) override;
  [[nodiscard]] std::unique_ptr<LoopTimer> MakeTimer(std::chrono::milliseconds interval,
                                                     std::function<void()> tick) override;

  // Adds a filter for good. It sees every message that Yield and Wait take from the queue, before the message is
  // dispatched. The argument is an MSG*. A filter that returns true has handled the message. Filters are called in the
  // order in which they were added.
  void AddMessageFilter(std::function<bool(void* message)> filter);

  // Whether the system has asked the thread to end (WM_QUIT).
  [[nodiscard]] bool quit_requested() const { return quit_; }

 private:
  friend class Win32Timer;
  struct TimerState {
    std::function<void()> tick;
    unsigned interval = 0;       // milliseconds
    std::uintptr_t running = 0;  // the system timer's number, 0 while disabled
    bool ticking = false;
  };

  struct WindowProcedure;  // of the hidden window
  void Pump();
  // Runs what was posted before `end`; a task may pump.
  void RunTasks(std::uint64_t end);
  [[nodiscard]] std::uint64_t NextTask();
  void Wake();
  void Dispatch(const void* message);
  void Tick(std::uintptr_t timer);
  void Enable(const std::shared_ptr<TimerState>& state);
  void Disable(TimerState& state);

  ::HWND__* window_ = nullptr;
  std::vector<std::function<bool(void*)>> filters_;
  std::map<std::uintptr_t, std::shared_ptr<TimerState>> timers_;  // the enabled ones
  std::uintptr_t last_timer_ = 0;
  bool quit_ = false;

  std::mutex mutex_;  // guards what follows
  std::deque<std::function<void()>> tasks_;
  std::uint64_t next_task_ = 0;  // the number of the next task to be posted; the front of tasks_ is the oldest
  bool wake_posted_ = false;
};

}  // namespace quenlar
