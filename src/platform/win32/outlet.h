// The way from the system's threads to an object of the program's thread, cut when the object goes.
#pragma once

#include <functional>
#include <memory>
#include <mutex>
#include <utility>

#include "platform/event_loop.h"

namespace quenlar::win32 {

template <typename Target>
class Outlet : public std::enable_shared_from_this<Outlet<Target>> {
 public:
  Outlet(Target& target, EventLoop& loop) : target_(&target), loop_(loop) {}
  Outlet(const Outlet&) = delete;
  Outlet& operator=(const Outlet&) = delete;

  // From any thread.
  void Post(std::function<void(Target& target)> task) {
    const std::lock_guard lock(mutex_);
    if (!target_) return;
    loop_.Post([self = this->shared_from_this(), task = std::move(task)] {
      if (self->target_) task(*self->target_);  // on the target's own thread, where alone it changes
    });
  }

  // On the target's own thread.
  [[nodiscard]] bool IsCut() const { return !target_; }

  void Cut() {
    const std::lock_guard lock(mutex_);
    target_ = nullptr;
  }

 private:
  std::mutex mutex_;
  Target* target_;
  EventLoop& loop_;
};

}  // namespace quenlar::win32
