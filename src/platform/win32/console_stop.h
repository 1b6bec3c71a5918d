// Ctrl-C and its relatives as a task of the event loop.
#pragma once

#include <functional>

#include "platform/event_loop.h"

namespace quenlar {

// While it lives, the first wish to stop calls `stop` inside a pump: Ctrl-C, Ctrl-Break, closing the console window,
// logging off. A second one ends the process at once with the status 130. When the console window closes, the system
// gives the process a few seconds; this object uses them until it is destroyed. Only one may live in a process.
class Win32ConsoleStop {
 public:
  Win32ConsoleStop(EventLoop& loop, std::function<void()> stop);
  ~Win32ConsoleStop();
  Win32ConsoleStop(const Win32ConsoleStop&) = delete;
  Win32ConsoleStop& operator=(const Win32ConsoleStop&) = delete;
};

}  // namespace quenlar
