// The addresses that one download goes through: the one with which it was started, then one for each redirect.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "platform/wire_address.h"

namespace quenlar {

class RedirectChain {
 public:
  explicit RedirectChain(std::string address) : address_(std::move(address)) {}

  // The current address: the one that was given, or the result of ResolveRedirect.
  [[nodiscard]] const std::string& address() const { return address_; }

  // The current address for the wire. Empty when the download must fail: the address has no host or another scheme than
  // http and https, or a page that came over https redirects to plain http.
  [[nodiscard]] std::optional<WireAddress> Wire() const;

  // Moves on to the target of an answer's `Location: <location>`. Returns false when these are more than kMaxRedirects.
  [[nodiscard]] bool Follow(std::string_view location);

 private:
  std::string address_;
  int redirects_ = 0;
  bool behind_secure_ = false;  // the address before was https
};

}  // namespace quenlar
