#include "page/page_address_list.h"

#include "base/ascii.h"

namespace quenlar {

std::uint32_t PageAddressList::NumberOf(std::string_view address) {
  const std::uint32_t hash = hash_.IgnoringCase(address);
  const std::uint32_t known =
      index_.Find(hash, [&](std::uint32_t number) { return EqualsIgnoreCase(addresses_[number].first, address); });
  if (known != IndexTable::kNone) return known;
  const auto number = static_cast<std::uint32_t>(addresses_.size());
  addresses_.push_back({texts_.Keep(address), {}, {}, 0});
  index_.Insert(hash, number);
  return number;
}

void PageAddressList::Add(const PageAddress& found) {
  const std::uint32_t number = NumberOf(found.address);
  Address& address = addresses_[number];
  const auto bit = static_cast<std::uint8_t>(1u << static_cast<unsigned>(found.place));
  if ((address.places & bit) != 0) return;
  address.places |= bit;
  std::string_view& first = found.place == AddressPlace::kProtected ? address.decoded : address.plain;
  if (first.empty()) first = address.first == found.address ? address.first : texts_.Keep(found.address);
  entries_.push_back({number, found.place, found.written == first ? first : texts_.Keep(found.written)});
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
