#include "platform/redirect_chain.h"

#include "platform/page_fetcher.h"

namespace quenlar {

std::optional<WireAddress> RedirectChain::Wire() const {
  auto wire = ParseWireAddress(address_);
  if (wire && behind_secure_ && !wire->secure) return std::nullopt;
  return wire;
}

bool RedirectChain::Follow(std::string_view location) {
  if (++redirects_ > kMaxRedirects) return false;
  const auto wire = ParseWireAddress(address_);
  behind_secure_ = wire && wire->secure;
  address_ = ResolveRedirect(address_, location);
  return true;
}

}  // namespace quenlar
