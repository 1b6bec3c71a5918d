#include "platform/web_url.h"

#include <algorithm>
#include <charconv>

namespace quenlar {

std::optional<WireAddress> SplitUrl(std::string_view url) {
  if (std::any_of(url.begin(), url.end(), [](char c) { return c <= ' ' || c > '~'; })) return {};
  WireAddress address;
  address.secure = url.starts_with("https://");
  if (!address.secure && !url.starts_with("http://")) return {};
  url.remove_prefix(address.secure ? 8 : 7);
  url = url.substr(0, url.find('#'));
  std::string_view authority = url.substr(0, url.find_first_of("/?\\"));
  const std::string_view target = url.substr(authority.size());
  if (const std::size_t at = authority.rfind('@'); at != authority.npos) authority.remove_prefix(at + 1);
  const std::size_t colon = authority.rfind(':');
  const bool has_port = colon != authority.npos && authority.find(']', colon) == authority.npos;
  address.host = authority.substr(0, has_port ? colon : authority.size());
  if (address.host.empty() || (address.host.front() == '[') != (address.host.back() == ']')) return {};
  address.port = address.secure ? 443 : 80;
  if (has_port && colon + 1 < authority.size()) {
    const std::string_view digits = authority.substr(colon + 1);
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), address.port);
    if (error != std::errc() || end != digits.data() + digits.size() || address.port == 0) return {};
  }
  if (!target.starts_with('/')) address.target = "/";
  address.target += target;
  return address;
}

std::string HostNameOf(const WireAddress& address) {
  return (address.secure ? "https://" : "http://") + address.host + ":" + std::to_string(address.port);
}

}  // namespace quenlar
