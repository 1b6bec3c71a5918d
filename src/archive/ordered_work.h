// A pool of threads for pieces of work whose outcomes are wanted in the order in which the pieces were given.
#pragma once

#include <condition_variable>
#include <cstddef>
#include <deque>
#include <exception>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <thread>
#include <utility>
#include <vector>

namespace quenlar {

// `Tools` is what a thread works with; each has its own. Without threads Next works out each outcome itself, so that
// one core runs no second thread. For one owner's thread; the pieces of work run on any.
template <typename Tools, typename Outcome>
class OrderedWork {
 public:
  using Work = std::function<Outcome(Tools& tools)>;

  // `most_weight` bounds the sum of the weights of what has been given and not taken back.
  OrderedWork(std::size_t threads, std::size_t most_weight, const std::function<std::unique_ptr<Tools>()>& make_tools)
      : most_jobs_(threads == 0 ? 1 : 2 * threads + 2), most_weight_(most_weight), own_tools_(make_tools()) {
    for (std::size_t i = 0; i < threads; ++i) {
      threads_.emplace_back([this, tools = std::shared_ptr<Tools>(make_tools())] { Run(*tools); });
    }
  }
  // What has not begun is dropped.
  ~OrderedWork() {
    {
      const std::lock_guard lock(mutex_);
      ends_ = true;
    }
    changed_.notify_all();
    for (std::thread& thread : threads_) thread.join();
  }
  OrderedWork(const OrderedWork&) = delete;
  OrderedWork& operator=(const OrderedWork&) = delete;

  [[nodiscard]] bool empty() const { return jobs_.empty(); }
  // Whether more may be given now. There is always room for one piece.
  [[nodiscard]] bool HasRoom() const { return jobs_.empty() || (jobs_.size() < most_jobs_ && weight_ < most_weight_); }
  void Add(Work work, std::size_t weight) {
    weight_ += weight;
    {
      const std::lock_guard lock(mutex_);
      jobs_.push_back(std::make_unique<Job>(std::move(work), weight));
    }
    changed_.notify_all();
  }

  // The outcome of the oldest piece, which there must be; waits for it. An exception of the work is thrown here.
  [[nodiscard]] Outcome Next() {
    if (threads_.empty()) jobs_.front()->Do(*own_tools_);
    std::unique_ptr<Job> job;
    {
      std::unique_lock lock(mutex_);
      changed_.wait(lock, [this] { return threads_.empty() || jobs_.front()->done; });
      job = std::move(jobs_.front());
      jobs_.pop_front();
      if (next_ > 0) --next_;
    }
    weight_ -= job->weight;
    if (job->failure) std::rethrow_exception(job->failure);
    return std::move(*job->outcome);
  }

  // For what the owner's thread does itself.
  [[nodiscard]] Tools& own_tools() { return *own_tools_; }

 private:
  struct Job {
    Job(Work its_work, std::size_t its_weight) : work(std::move(its_work)), weight(its_weight) {}
    void Do(Tools& tools) {
      try {
        outcome.emplace(work(tools));
      } catch (...) {
        failure = std::current_exception();
      }
      work = nullptr;
    }
    Work work;
    const std::size_t weight;
    bool done = false;  // guarded by mutex_; what follows is read when it is set
    std::optional<Outcome> outcome;
    std::exception_ptr failure;
  };

  void Run(Tools& tools) {
    std::unique_lock lock(mutex_);
    for (;;) {
      changed_.wait(lock, [this] { return ends_ || next_ < jobs_.size(); });
      if (ends_) return;
      Job& job = *jobs_[next_++];
      lock.unlock();
      job.Do(tools);
      lock.lock();
      job.done = true;
      changed_.notify_all();
    }
  }

  const std::size_t most_jobs_, most_weight_;
  std::size_t weight_ = 0;
  const std::unique_ptr<Tools> own_tools_;
  std::mutex mutex_;  // guards what follows
  std::condition_variable changed_;
  std::deque<std::unique_ptr<Job>> jobs_;
  std::size_t next_ = 0;  // of `jobs_`: the first one that no thread has taken
  bool ends_ = false;
  std::vector<std::thread> threads_;
};

}  // namespace quenlar
