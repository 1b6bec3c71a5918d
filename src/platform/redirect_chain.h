// The addresses that one download goes through: the one it was started with, then one a redirect.
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

  // The address at hand: as it was given, then as ResolveRedirect makes it.
  [[nodiscard]] const std::string& address() const { return address_; }

  // What to ask for it. Empty where the download fails: the address cannot be spoken, or a page that came over https
  // redirects to one over plain http.
  [[nodiscard]] std::optional<WireAddress> Wire() const;

  // Goes on to where the answer's `Location: <location>` points. False where that is more than kMaxRedirects.
  [[nodiscard]] bool Follow(std::string_view location);

 private:
  std::string address_;
  int redirects_ = 0;
  bool behind_secure_ = false;  // the address before was https
};

}  // namespace quenlar
