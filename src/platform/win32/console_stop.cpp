#include "platform/win32/console_stop.h"

#include <cassert>
#include <mutex>

#include "platform/win32/handle.h"

namespace quenlar {
namespace {

constexpr UINT kInterrupted = 130;

// The system calls a plain function on a thread of its own, so what it needs cannot be a member.
struct Target {
  std::mutex mutex;
  EventLoop* loop = nullptr;
  std::function<void()> stop;
  bool asked = false;
  win32::Handle gone{CreateEventW(nullptr, TRUE, FALSE, nullptr)};
};

Target& TheTarget() {
  static Target target;
  return target;
}

BOOL WINAPI OnConsoleEvent(DWORD event) {
  Target& target = TheTarget();
  {
    const std::lock_guard lock(target.mutex);
    if (!target.loop) return FALSE;
    if (target.asked) TerminateProcess(GetCurrentProcess(), kInterrupted);
    target.asked = true;
    target.loop->Post(target.stop);
  }
  // Returning from one of the others ends the process.
  if (event != CTRL_C_EVENT && event != CTRL_BREAK_EVENT) WaitForSingleObject(target.gone.get(), INFINITE);
  return TRUE;
}

}  // namespace

Win32ConsoleStop::Win32ConsoleStop(EventLoop& loop, std::function<void()> stop) {
  Target& target = TheTarget();
  {
    const std::lock_guard lock(target.mutex);
    assert(!target.loop);
    target.loop = &loop;
    target.stop = std::move(stop);
    target.asked = false;
    ResetEvent(target.gone.get());
  }
  SetConsoleCtrlHandler(OnConsoleEvent, TRUE);
}

Win32ConsoleStop::~Win32ConsoleStop() {
  SetConsoleCtrlHandler(OnConsoleEvent, FALSE);
  Target& target = TheTarget();
  const std::lock_guard lock(target.mutex);
  target.loop = nullptr;
  target.stop = nullptr;
  SetEvent(target.gone.get());
}

}  // namespace quenlar
