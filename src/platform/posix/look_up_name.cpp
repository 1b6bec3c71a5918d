#include "platform/posix/look_up_name.h"

#include <algorithm>
#include <memory>
#include <new>

#include <netdb.h>
#include <netinet/in.h>
#include <sys/socket.h>

#include "platform/posix/socket_address.h"

namespace quenlar {

std::vector<IpAddress> LookUpByGetaddrinfo(const std::string& host) {
  addrinfo hints{};
  hints.ai_family = AF_UNSPEC;
  hints.ai_socktype = SOCK_STREAM;
  hints.ai_flags = AI_ADDRCONFIG;
  addrinfo* list = nullptr;
  std::vector<IpAddress> addresses;
  if (getaddrinfo(host.c_str(), nullptr, &hints, &list) != 0) return addresses;
  const std::unique_ptr<addrinfo, decltype(&freeaddrinfo)> owner(list, &freeaddrinfo);
  try {
    for (const addrinfo* entry = list; entry != nullptr; entry = entry->ai_next) {
      const auto address = IpAddressOf(*entry->ai_addr);
      if (address && std::find(addresses.begin(), addresses.end(), *address) == addresses.end()) {
        addresses.push_back(*address);
      }
    }
  } catch (const std::bad_alloc&) {
    addresses.clear();
  }
  return addresses;
}

}  // namespace quenlar
