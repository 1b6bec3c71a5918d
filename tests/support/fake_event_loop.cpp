#include "support/fake_event_loop.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <thread>

namespace quenlar {

void FakeEventLoop::Yield() {
  ++yields_;
  Pump();
}

void FakeEventLoop::Wait(Milliseconds limit) {
  ++waits_;
  if (Pump()) return;
  // A test's other threads may be about to post. Not at every turn: on a loaded machine the others' share is long.
  if (waits_ % 1024 == 0) std::this_thread::yield();
  JumpTo(NextDue(now() + std::max(limit, Milliseconds(0))));
  Pump();
}

void FakeEventLoop::Post(std::function<void()> task) { Schedule(Milliseconds(0), std::move(task)); }

void FakeEventLoop::Schedule(Milliseconds delay, std::function<void()> task) {
  const std::lock_guard lock(mutex_);
  tasks_.emplace(TaskKey(now_ + delay, next_task_++), std::move(task));
}

std::unique_ptr<LoopTimer> FakeEventLoop::MakeTimer(Milliseconds interval, std::function<void()> tick) {
  return timers_.Make(interval, std::move(tick));
}

void FakeEventLoop::Advance(Milliseconds time) {
  const Milliseconds end = now() + time;
  Pump();
  while (now() < end) {
    JumpTo(NextDue(end));
    Pump();
  }
}

FakeEventLoop::Milliseconds FakeEventLoop::now() const {
  const std::lock_guard lock(mutex_);
  return now_;
}

// True when something was delivered.
bool FakeEventLoop::Pump() {
  if (yields_ + waits_ > 5'000'000) {
    std::fputs("FakeEventLoop: pumped five million times; something waits for what never comes\n", stderr);
    std::abort();
  }
  deepest_ = std::max(deepest_, ++depth_);
  const auto leave = [](int* depth) { --*depth; };
  const std::unique_ptr<int, decltype(leave)> left(&depth_, leave);  // also by an exception
  if (const auto source = source_) source();
  const bool ran_tasks = RunTasks();
  const bool ran_timers = timers_.RunDue();
  return ran_tasks || ran_timers;
}

bool FakeEventLoop::RunTasks() {
  std::unique_lock lock(mutex_);
  const std::uint64_t end = next_task_;  // what is posted from now on belongs to a later pump
  std::size_t delivered = 0;
  while (delivered < deliveries_per_pump_) {
    const auto next = std::find_if(tasks_.begin(), tasks_.end(), [&](const auto& task) {
      return task.first.first > now_ || task.first.second < end;
    });
    if (next == tasks_.end() || next->first.first > now_) break;
    const auto task = std::move(next->second);
    tasks_.erase(next);
    ++delivered;
    lock.unlock();
    task();
    lock.lock();
  }
  return delivered > 0;
}

FakeEventLoop::Milliseconds FakeEventLoop::NextDue(Milliseconds limit) const {
  Milliseconds next = limit;
  if (const auto due = timers_.NextDue()) next = std::min(next, std::chrono::ceil<Milliseconds>(*due));
  const std::lock_guard lock(mutex_);
  if (!tasks_.empty()) next = std::min(next, tasks_.begin()->first.first);
  return next;
}

void FakeEventLoop::JumpTo(Milliseconds time) {
  const std::lock_guard lock(mutex_);
  now_ = std::max(now_, time);
}

}  // namespace quenlar
