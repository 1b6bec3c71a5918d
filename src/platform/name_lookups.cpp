#include "platform/name_lookups.h"

#include <chrono>
#include <condition_variable>
#include <deque>
#include <mutex>
#include <system_error>
#include <thread>
#include <utility>

namespace quenlar {
namespace {

constexpr std::chrono::seconds kIdleTime{2};  // after which a thread without work ends

}  // namespace

// What the threads share with their maker, and keep when it has gone.
struct NameLookups::Shared {
  struct Name {
    std::string host;
    Found found;
  };
  explicit Shared(EventLoop& event_loop, LookUpName look) : loop(event_loop), look_up(std::move(look)) {}

  EventLoop& loop;  // touched under the mutex while alive
  const LookUpName look_up;
  std::mutex mutex;  // guards what follows
  bool alive = true;
  std::deque<Name> waiting;
  std::size_t threads = 0, idle = 0;
  std::condition_variable work;
};

NameLookups::NameLookups(EventLoop& loop, LookUpName look_up)
    : shared_(std::make_shared<Shared>(loop, std::move(look_up))) {}

NameLookups::~NameLookups() {
  const std::lock_guard lock(shared_->mutex);
  shared_->alive = false;
  shared_->waiting.clear();
  shared_->work.notify_all();
}

void NameLookups::Find(std::string host, Found found) {
  const std::lock_guard lock(shared_->mutex);
  shared_->waiting.push_back({std::move(host), std::move(found)});
  if (shared_->idle >= shared_->waiting.size()) return shared_->work.notify_one();
  if (shared_->threads == kMaxThreads) return;
  try {
    std::thread(&NameLookups::Work, shared_).detach();
    ++shared_->threads;
  } catch (const std::system_error&) {
    if (shared_->threads > 0) return;  // another one will come to it
    shared_->loop.Post([call = std::move(shared_->waiting.back().found)] { call({}); });
    shared_->waiting.pop_back();
  }
}

void NameLookups::Work(const std::shared_ptr<Shared>& shared) {
  std::unique_lock lock(shared->mutex);
  const auto has_work = [&] { return !shared->alive || !shared->waiting.empty(); };
  while (true) {
    ++shared->idle;
    const bool woken = shared->work.wait_for(lock, kIdleTime, has_work);
    --shared->idle;
    if (!woken || !shared->alive) break;
    Shared::Name name = std::move(shared->waiting.front());
    shared->waiting.pop_front();
    lock.unlock();
    std::vector<IpAddress> addresses = shared->look_up(name.host);
    lock.lock();
    if (!shared->alive) break;
    shared->loop.Post([shared, call = std::move(name.found), addresses = std::move(addresses)] {
      if (shared->alive) call(addresses);  // on the maker's thread, where alone it changes
    });
  }
  --shared->threads;
}

}  // namespace quenlar
