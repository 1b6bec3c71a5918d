#include "platform/posix/event_loop.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <utility>

#include <sys/epoll.h>
#include <sys/eventfd.h>
#include <unistd.h>

#include "platform/posix/errors.h"

namespace quenlar {

Result<std::unique_ptr<PosixEventLoop>> PosixEventLoop::Make() {
  const int epoll = epoll_create1(EPOLL_CLOEXEC);
  if (epoll < 0) return StatusOfErrno(errno, "the event loop");
  const int wake = eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK);
  epoll_event event{};
  event.events = EPOLLIN;
  event.data.fd = wake;
  if (wake < 0 || epoll_ctl(epoll, EPOLL_CTL_ADD, wake, &event) != 0) {
    const Status status = StatusOfErrno(errno, "the event loop");
    close(epoll);
    if (wake >= 0) close(wake);
    return status;
  }
  return std::unique_ptr<PosixEventLoop>(new PosixEventLoop(epoll, wake));
}

PosixEventLoop::PosixEventLoop(int epoll, int wake)
    : epoll_(epoll), wake_(wake), timers_([] { return std::chrono::steady_clock::now().time_since_epoch(); }) {}

PosixEventLoop::~PosixEventLoop() {
  close(wake_);
  close(epoll_);
}

void PosixEventLoop::Yield() { Pump(std::nullopt); }

void PosixEventLoop::Wait(std::chrono::milliseconds limit) { Pump(limit); }

void PosixEventLoop::Post(std::function<void()> task) {
  const std::lock_guard lock(mutex_);
  tasks_.push_back(std::move(task));
  ++posted_;
  if (!std::exchange(sleeping_, false)) return;
  const std::uint64_t one = 1;
  [[maybe_unused]] const ssize_t written = write(wake_, &one, sizeof one);  // a full counter wakes as well
}

std::unique_ptr<LoopTimer> PosixEventLoop::MakeTimer(std::chrono::milliseconds interval, std::function<void()> tick) {
  return timers_.Make(interval, std::move(tick));
}

void PosixEventLoop::AddSource(IoSource& source) { sources_.push_back(&source); }

void PosixEventLoop::RemoveSource(IoSource& source) {
  std::erase(sources_, &source);
  for (std::size_t fd = 0; fd < by_descriptor_.size(); ++fd) {
    if (by_descriptor_[fd] == &source) Forget(static_cast<int>(fd));
  }
}

void PosixEventLoop::Watch(int fd, bool readable, bool writable, IoSource& source) {
  const auto index = static_cast<std::size_t>(fd);
  if (index >= by_descriptor_.size()) by_descriptor_.resize(index + 1);
  epoll_event event{};
  event.events = (readable ? EPOLLIN : 0u) | (writable ? EPOLLOUT : 0u);
  event.data.fd = fd;
  const int operation = by_descriptor_[index] == nullptr ? EPOLL_CTL_ADD : EPOLL_CTL_MOD;
  // A library may close a descriptor and open one with the same number, and the set then lacks it, or has it already.
  if (epoll_ctl(epoll_, operation, fd, &event) != 0 && (errno == ENOENT || errno == EEXIST)) {
    epoll_ctl(epoll_, errno == ENOENT ? EPOLL_CTL_ADD : EPOLL_CTL_MOD, fd, &event);
  }
  by_descriptor_[index] = &source;
}

void PosixEventLoop::Forget(int fd) {
  const auto index = static_cast<std::size_t>(fd);
  if (index >= by_descriptor_.size() || std::exchange(by_descriptor_[index], nullptr) == nullptr) return;
  epoll_ctl(epoll_, EPOLL_CTL_DEL, fd, nullptr);
}

void PosixEventLoop::Pump(std::optional<std::chrono::milliseconds> sleep) {
  RunIo(sleep ? SleepMilliseconds(*sleep) : 0);
  RunTasks();
  timers_.RunDue();
}

// How long a sleep may last, rounded up so that it does not end just before the moment for which it waits.
int PosixEventLoop::SleepMilliseconds(std::chrono::milliseconds limit) {
  const Instant now = std::chrono::steady_clock::now();
  // A day is long enough, and it fits into the system's argument.
  std::chrono::steady_clock::duration sleep = std::clamp<std::chrono::milliseconds>(limit, {}, std::chrono::hours(24));
  if (const auto due = timers_.NextDue()) sleep = std::min(sleep, *due - now.time_since_epoch());
  for (const IoSource* source : sources_) {
    if (const auto deadline = source->Deadline()) sleep = std::min(sleep, *deadline - now);
  }
  if (sleep <= sleep.zero()) return 0;
  const std::lock_guard lock(mutex_);
  if (!tasks_.empty()) return 0;
  sleeping_ = true;
  return static_cast<int>(std::chrono::ceil<std::chrono::milliseconds>(sleep).count());
}

// Collects what the system reports. No code of the program runs in here, so a descriptor of this batch cannot be closed
// and used for something else before its turn.
void PosixEventLoop::RunIo(int timeout) {
  std::array<epoll_event, 64> events;
  const int count = epoll_wait(epoll_, events.data(), events.size(), timeout);
  if (timeout != 0) {
    const std::lock_guard lock(mutex_);
    sleeping_ = false;
  }
  for (int i = 0; i < count; ++i) {
    const int fd = events[i].data.fd;
    if (fd == wake_) {
      std::uint64_t ignored = 0;
      [[maybe_unused]] const ssize_t size = read(wake_, &ignored, sizeof ignored);
      continue;
    }
    IoSource* source = by_descriptor_[static_cast<std::size_t>(fd)];
    if (source == nullptr) continue;
    const auto bits = events[i].events;
    source->OnReady(fd, {.readable = (bits & EPOLLIN) != 0,
                         .writable = (bits & EPOLLOUT) != 0,
                         .broken = (bits & (EPOLLERR | EPOLLHUP)) != 0});
  }
  const Instant now = std::chrono::steady_clock::now();
  for (IoSource* source : sources_) {
    if (const auto deadline = source->Deadline(); deadline && *deadline <= now) source->OnDeadline();
  }
}

// Runs the tasks that were posted before this call. A task may pump, so the next one may be gone by then.
void PosixEventLoop::RunTasks() {
  std::unique_lock lock(mutex_);
  const std::uint64_t end = posted_;
  while (taken_ < end && !tasks_.empty()) {
    const auto task = std::move(tasks_.front());
    tasks_.pop_front();
    ++taken_;
    lock.unlock();
    task();
    lock.lock();
  }
}

}  // namespace quenlar
