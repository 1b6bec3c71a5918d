// A small web site on a free loopback port, which is also a proxy: it answers any host's address from its own pages.
#pragma once

#include <atomic>
#include <cstdint>
#include <map>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

namespace quenlar::window_test {

class Site {
 public:
  Site();
  ~Site();
  Site(const Site&) = delete;
  Site& operator=(const Site&) = delete;

  [[nodiscard]] std::uint16_t port() const { return port_; }
  // "http://127.0.0.1:<port>" and the path.
  [[nodiscard]] std::string Address(const std::string& path) const;

  // `target` is a path, or a whole address that a client asks its proxy for. Unknown targets are answered by 404.
  void SetPage(const std::string& target, const std::string& body);
  // Requests for this target are taken and never answered, until the site goes.
  void SetSilent(const std::string& target);

  // The targets asked for, in order.
  [[nodiscard]] std::vector<std::string> Requests() const;
  [[nodiscard]] bool WasAskedFor(const std::string& target) const;

 private:
  void Accept();
  void Serve(std::uintptr_t client);
  [[nodiscard]] std::string Answer(const std::string& asked);

  std::uintptr_t listener_;
  std::uint16_t port_ = 0;
  std::atomic<bool> ending_{false};
  mutable std::mutex mutex_;
  std::map<std::string, std::string> pages_;
  std::vector<std::string> silent_, requests_;
  std::vector<std::uintptr_t> clients_;
  std::vector<std::thread> serving_;
  std::thread accepting_;
};

}  // namespace quenlar::window_test
