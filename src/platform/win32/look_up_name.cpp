#include "platform/win32/look_up_name.h"

#include <algorithm>
#include <cstring>
#include <memory>
#include <new>
#include <optional>

#include "platform/win32/wide.h"
#include "platform/win32/windows_api.h"

namespace quenlar::win32 {
namespace {

std::optional<IpAddress> AddressOf(const ADDRINFOW& entry) {
  IpAddress address{.v6 = entry.ai_family == AF_INET6};
  if (address.v6) {
    std::memcpy(address.bytes.data(), &reinterpret_cast<const sockaddr_in6*>(entry.ai_addr)->sin6_addr, 16);
  } else if (entry.ai_family == AF_INET) {
    std::memcpy(address.bytes.data(), &reinterpret_cast<const sockaddr_in*>(entry.ai_addr)->sin_addr, 4);
  } else {
    return std::nullopt;
  }
  return address;
}

}  // namespace

std::vector<IpAddress> LookUpByGetAddrInfo(const std::string& host) {
  std::vector<IpAddress> addresses;
  try {
    ADDRINFOW hints{};
    hints.ai_family = AF_UNSPEC;
    hints.ai_socktype = SOCK_STREAM;
    ADDRINFOW* list = nullptr;
    if (GetAddrInfoW(ToWide(host).c_str(), nullptr, &hints, &list) != 0) return addresses;
    const std::unique_ptr<ADDRINFOW, decltype(&FreeAddrInfoW)> owner(list, &FreeAddrInfoW);
    for (const ADDRINFOW* entry = list; entry != nullptr; entry = entry->ai_next) {
      const auto address = AddressOf(*entry);
      if (address && std::find(addresses.begin(), addresses.end(), *address) == addresses.end()) {
        addresses.push_back(*address);
      }
    }
  } catch (const std::bad_alloc&) {
    addresses.clear();
  }
  return addresses;
}

}  // namespace quenlar::win32
