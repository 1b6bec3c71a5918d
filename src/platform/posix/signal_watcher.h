// Delivers the signals that ask the program to end through the event loop.
#pragma once

#include <functional>

#include "platform/posix/event_loop.h"

namespace quenlar {

// While it lives, the first of SIGINT, SIGTERM and SIGHUP calls `on_signal` inside a pump, with the number of the
// signal. A second signal ends the process at once, as the system would by itself. A SIGHUP that was ignored before
// (nohup) stays ignored. Only one watcher may live at a time, because a signal handler reaches nothing but static
// memory.
class SignalWatcher : public IoSource {
 public:
  SignalWatcher(PosixEventLoop& loop, std::function<void(int signal)> on_signal);
  SignalWatcher(const SignalWatcher&) = delete;
  SignalWatcher& operator=(const SignalWatcher&) = delete;
  // Gives the signals their old meaning back, unless StayToTheEnd was called.
  ~SignalWatcher() override;

  // From now on, after the death of the watcher too, a first signal changes nothing: the work is done, its exit status
  // is decided, and the process is on its way out. A second signal still ends the process at once.
  void StayToTheEnd() { stays_ = true; }

  void OnReady(int fd, Readiness readiness) override;

 private:
  PosixEventLoop& loop_;
  const std::function<void(int)> on_signal_;
  int pipe_[2];
  bool stays_ = false;
};

// From now on a reader that goes away makes the write fail and does not end the process.
void IgnoreBrokenPipes();

}  // namespace quenlar
