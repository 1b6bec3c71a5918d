#include "platform/posix/proxy_environment.h"

#include <algorithm>
#include <cstdlib>
#include <initializer_list>
#include <string_view>

#include "base/ascii.h"

namespace quenlar {
namespace {

std::string_view FirstSet(std::initializer_list<const char*> names) {
  for (const char* name : names) {
    const char* const value = std::getenv(name);
    if (value != nullptr && *value != '\0') return value;
  }
  return "";
}

bool Names(std::string_view list, std::string_view host) {
  while (!list.empty()) {
    std::string_view name = list.substr(0, list.find_first_of(", "));
    list.remove_prefix(std::min(name.size() + 1, list.size()));
    if (name == "*") return true;
    if (name.starts_with('.')) name.remove_prefix(1);
    if (name.empty() || host.size() < name.size()) continue;
    const std::string_view end = host.substr(host.size() - name.size());
    const bool whole = end.size() == host.size() || host[host.size() - end.size() - 1] == '.';
    if (whole && EqualsIgnoreCase(end, name)) return true;
  }
  return false;
}

}  // namespace

std::string ProxyFromEnvironment(const WireAddress& target) {
  std::string_view host = target.host;
  if (host.starts_with('[')) host = host.substr(1, host.size() - 2);
  if (Names(FirstSet({"no_proxy", "NO_PROXY"}), host)) return "";
  // HTTP_PROXY in capitals is what a web server makes of a request's header, so it does not count.
  const std::string_view own = target.secure ? FirstSet({"https_proxy", "HTTPS_PROXY"}) : FirstSet({"http_proxy"});
  return std::string(own.empty() ? FirstSet({"all_proxy", "ALL_PROXY"}) : own);
}

}  // namespace quenlar
