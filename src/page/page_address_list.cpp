#include "page/page_address_list.h"

namespace quenlar {

void PageAddressList::Add(const PageAddress& found) {
  auto known = numbers_.find(found.address);
  if (known == numbers_.end()) {
    known = numbers_.emplace(texts_.Keep(found.address), static_cast<std::uint32_t>(addresses_.size())).first;
    addresses_.push_back({});
  }
  Address& address = addresses_[known->second];
  const auto bit = static_cast<std::uint8_t>(1u << static_cast<unsigned>(found.place));
  if ((address.places & bit) != 0) return;
  address.places |= bit;
  std::string_view& first = found.place == AddressPlace::kProtected ? address.decoded : address.plain;
  if (first.empty()) first = known->first == found.address ? known->first : texts_.Keep(found.address);
  entries_.push_back({known->second, found.place, found.written == first ? first : texts_.Keep(found.written)});
}

std::vector<PageAddress> PageAddressList::Listed(bool with_protected) const {
  std::vector<PageAddress> listed;
  for (const Entry& entry : entries_) {
    const Address& address = addresses_[entry.address];
    const bool is_protected = entry.place == AddressPlace::kProtected;
    if (is_protected && (!with_protected || !address.plain.empty())) continue;
    listed.push_back({is_protected ? address.decoded : address.plain, entry.written, entry.place});
  }
  return listed;
}

std::size_t PageAddressList::ProtectedCount() const {
  std::size_t count = 0;
  for (const Address& address : addresses_) count += address.plain.empty() ? 1 : 0;
  return count;
}

}  // namespace quenlar
