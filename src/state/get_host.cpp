#include "state/get_host.h"

#include "base/ascii.h"

namespace quenlar {

std::string_view HostPart(std::string_view address) {
  constexpr std::string_view kScheme = "http://";
  if (address.starts_with(kScheme) || StartsWithIgnoreCase(address, kScheme)) address.remove_prefix(kScheme.size());
  return address.substr(0, address.find('/'));
}

std::string GetHost(std::string_view address) { return "http://" + std::string(HostPart(address)); }

}  // namespace quenlar
