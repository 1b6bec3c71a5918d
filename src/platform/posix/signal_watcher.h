// The user's and the system's wish that the program ends, delivered by the event loop.
#pragma once

#include <functional>

#include "platform/posix/posix_event_loop.h"

namespace quenlar {

// From its construction to its destruction SIGINT, SIGTERM and SIGHUP call `on_signal`, with the signal's number,
// inside a pump: the first one of the three. A second one ends the process at once, as if nobody watched. A SIGHUP that
// was ignored before (nohup) stays ignored. At most one watcher lives at a time.
class SignalWatcher : public IoSource {
 public:
  SignalWatcher(PosixEventLoop& loop, std::function<void(int signal)> on_signal);
  SignalWatcher(const SignalWatcher&) = delete;
  SignalWatcher& operator=(const SignalWatcher&) = delete;
  ~SignalWatcher() override;

  void OnReady(int fd, Readiness readiness) override;

 private:
  PosixEventLoop& loop_;
  const std::function<void(int)> on_signal_;
  int pipe_[2];
};

// A reader that goes away is told by the failing write, for the rest of the process.
void IgnoreBrokenPipes();

}  // namespace quenlar
