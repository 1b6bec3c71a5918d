// Counts the connections that are open at a time, as a well-mannered client is judged by.
#pragma once

#include <algorithm>
#include <map>
#include <mutex>

#include <poll.h>

namespace quenlar::hostile {

class OpenConnections {
 public:
  void Enter(int socket, int port) {
    const std::lock_guard lock(mutex_);
    open_[socket] = port;
    Count();
  }
  void Leave(int socket) {
    const std::lock_guard lock(mutex_);
    open_.erase(socket);
  }
  void ForgetPeaks() {
    const std::lock_guard lock(mutex_);
    peak_ = 0;
    peaks_.clear();
    Count();
  }
  // The most since ForgetPeaks, counted whenever a connection came.
  [[nodiscard]] int Peak() {
    const std::lock_guard lock(mutex_);
    return peak_;
  }
  [[nodiscard]] int PeakOfOnePort() {
    const std::lock_guard lock(mutex_);
    int most = 0;
    for (const auto& [port, peak] : peaks_) most = std::max(most, peak);
    return most;
  }

 private:
  void Count() {
    int all = 0;
    std::map<int, int> here;
    for (const auto& [socket, port] : open_) {
      // One that the client has closed is not open, although its thread may not have seen it yet.
      pollfd closed{.fd = socket, .events = POLLRDHUP, .revents = 0};
      if (poll(&closed, 1, 0) == 1) continue;
      ++all;
      ++here[port];
    }
    peak_ = std::max(peak_, all);
    for (const auto& [port, count] : here) peaks_[port] = std::max(peaks_[port], count);
  }

  std::mutex mutex_;
  std::map<int, int> open_;   // socket, port
  std::map<int, int> peaks_;  // by port
  int peak_ = 0;
};

}  // namespace quenlar::hostile
