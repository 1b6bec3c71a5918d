// The event loop over epoll.
#pragma once

#include <chrono>
#include <cstdint>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <vector>

#include "base/status.h"
#include "platform/event_loop.h"
#include "platform/timer_list.h"

namespace quenlar {

// A part of the platform that waits for file descriptors or for a moment, such as the transport and the signal watcher.
// The loop calls it inside pumps. It must not run code of the program itself, but posts that to the loop.
class IoSource {
 public:
  virtual ~IoSource() = default;
  struct Readiness {
    bool readable = false, writable = false, broken = false;
  };
  virtual void OnReady(int fd, Readiness readiness) = 0;
  // When OnDeadline is to be called, or empty for never. The loop asks before each sleep.
  [[nodiscard]] virtual std::optional<std::chrono::steady_clock::time_point> Deadline() const { return std::nullopt; }
  virtual void OnDeadline() {}
};

class PosixEventLoop : public EventLoop {
 public:
  // Fails when the process is out of descriptors.
  [[nodiscard]] static Result<std::unique_ptr<PosixEventLoop>> Make();
  PosixEventLoop(const PosixEventLoop&) = delete;
  PosixEventLoop& operator=(const PosixEventLoop&) = delete;
  ~PosixEventLoop() override;

  void Yield() override;
  void Wait(std::chrono::milliseconds limit) override;
  void Post(std::function<void()> task) override;
  [[nodiscard]] std::unique_ptr<LoopTimer> MakeTimer(std::chrono::milliseconds interval,
                                                     std::function<void()> tick) override;

  // Registers a source, or a descriptor of a source. Remove a source before it is destroyed, and forget a descriptor
  // before it is closed. A descriptor belongs to one source. Watching a descriptor again changes what it is watched
  // for.
  void AddSource(IoSource& source);
  void RemoveSource(IoSource& source);
  void Watch(int fd, bool readable, bool writable, IoSource& source);
  void Forget(int fd);

 private:
  using Instant = std::chrono::steady_clock::time_point;

  PosixEventLoop(int epoll, int wake);
  void Pump(std::optional<std::chrono::milliseconds> sleep);
  [[nodiscard]] int SleepMilliseconds(std::chrono::milliseconds limit);
  void RunIo(int timeout);
  void RunTasks();

  const int epoll_;
  const int wake_;  // an eventfd that ends a sleep
  std::vector<IoSource*> sources_;
  std::vector<IoSource*> by_descriptor_;
  TimerList timers_;

  std::mutex mutex_;  // guards what follows, which Post uses on other threads
  std::deque<std::function<void()>> tasks_;
  std::uint64_t posted_ = 0, taken_ = 0;  // tasks so far
  bool sleeping_ = false;                 // Post must write to wake_
};

}  // namespace quenlar
