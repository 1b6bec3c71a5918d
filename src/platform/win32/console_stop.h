// Ctrl-C and its relatives as a task of the event loop.
#pragma once

#include <functional>

#include "platform/event_loop.h"

namespace quenlar {

// While it lives, the first Ctrl-C or Ctrl-Break (or the console window being closed, the user logging off) calls
// `stop` inside a pump; a second one ends the process at once with the status 130. When the window is being closed the
// system gives the process some seconds; they are used until this object goes. One at a time in a process.
class Win32ConsoleStop {
 public:
  Win32ConsoleStop(EventLoop& loop, std::function<void()> stop);
  ~Win32ConsoleStop();
  Win32ConsoleStop(const Win32ConsoleStop&) = delete;
  Win32ConsoleStop& operator=(const Win32ConsoleStop&) = delete;
};

}  // namespace quenlar
