// Through which proxy the downloads go.
#pragma once

#include <string>
#include <utility>

namespace quenlar {

struct ProxyChoice {
  enum class Kind {
    kSystem,  // what the system's settings say; on POSIX http_proxy, https_proxy, all_proxy and no_proxy
    kNone,
    kGiven,
  };
  Kind kind = Kind::kSystem;
  std::string address = {};  // kGiven: "http://host:port"; every download goes through it and is never made without it

  [[nodiscard]] static ProxyChoice None() { return {.kind = Kind::kNone}; }
  [[nodiscard]] static ProxyChoice Given(std::string address) {
    return {.kind = Kind::kGiven, .address = std::move(address)};
  }
};

}  // namespace quenlar
