#include "page/page_address_list.h"

#include <algorithm>
#include <array>

#include "base/ascii.h"

namespace quenlar {
namespace {

std::uint8_t BitOf(AddressPlace place) { return static_cast<std::uint8_t>(1u << static_cast<unsigned>(place)); }

bool IsPlain(std::uint8_t places) { return (places & ~BitOf(AddressPlace::kProtected)) != 0; }

}  // namespace

std::uint32_t PageAddressList::NumberOf(std::string_view address) {
  const std::uint32_t hash = hash_.IgnoringCase(address);
  const std::uint32_t known =
      index_.Find(hash, [&](std::uint32_t number) { return EqualsIgnoreCase(addresses_[number].first, address); });
  if (known != IndexTable::kNone) return known;
  const auto number = static_cast<std::uint32_t>(addresses_.size());
  addresses_.push_back({texts_.Keep(address), 0});
  index_.Insert(hash, number);
  return number;
}

void PageAddressList::Add(const PageAddress& found, std::size_t at) {
  const std::uint32_t number = NumberOf(found.address);
  Address& address = addresses_[number];
  const bool in_order = entries_.empty() || entries_.back().at <= at;
  // What comes late may be the first one of its kind on the page.
  if ((address.places & BitOf(found.place)) != 0 && in_order) return;
  in_order_ = in_order_ && in_order;
  address.places |= BitOf(found.place);
  const std::string_view spelled = found.address == address.first ? address.first : texts_.Keep(found.address);
  entries_.push_back(
      {number, found.place, spelled, found.written == spelled ? spelled : texts_.Keep(found.written), at});
}

std::vector<PageAddressList::Entry> PageAddressList::InOrder() const {
  std::vector<Entry> entries = entries_;
  if (in_order_) return entries;
  std::stable_sort(entries.begin(), entries.end(), [](const Entry& a, const Entry& b) { return a.at < b.at; });
  std::vector<std::uint8_t> places(addresses_.size());
  const auto repeats = [&](const Entry& entry) {
    const std::uint8_t before = places[entry.address];
    places[entry.address] = before | BitOf(entry.place);
    return places[entry.address] == before;
  };
  entries.erase(std::remove_if(entries.begin(), entries.end(), repeats), entries.end());
  return entries;
}

std::vector<PageAddress> PageAddressList::Listed(bool with_protected) const {
  std::vector<PageAddress> listed;
  // As each address is first written plainly, and as it is first decoded.
  std::vector<std::array<std::string_view, 2>> spelled(addresses_.size());
  for (const Entry& entry : InOrder()) {
    const bool is_protected = entry.place == AddressPlace::kProtected;
    if (is_protected && (!with_protected || IsPlain(addresses_[entry.address].places))) continue;
    std::string_view& first = spelled[entry.address][is_protected ? 1 : 0];
    if (first.empty()) first = entry.spelled;
    listed.push_back({first, entry.written, entry.place});
  }
  return listed;
}

std::size_t PageAddressList::ProtectedCount() const {
  std::size_t count = 0;
  for (const Address& address : addresses_) count += IsPlain(address.places) ? 0 : 1;
  return count;
}

}  // namespace quenlar
