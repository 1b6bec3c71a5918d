#include "web/page_addresses.h"

#include "base/ascii.h"

namespace quenlar {
namespace {

constexpr std::size_t kSeveral = 16;  // a page with an address often has several

}  // namespace

std::vector<PageAddresses::Address> PageAddresses::TextList() const {
  std::vector<Address> list;
  list.reserve(mail_.size() + between_.size());
  TakeUnless(0, mail_, list);
  TakeUnless(Bit(Place::kMailLink), between_, list);
  return list;
}

std::vector<PageAddresses::Address> PageAddresses::TagList() const {
  std::vector<Address> list;
  TakeUnless(Bit(Place::kMailLink) | Bit(Place::kBetweenTags), tag_, list);
  return list;
}

void PageAddresses::TakeUnless(std::uint8_t places, const std::vector<Item>& list, std::vector<Address>& to) const {
  for (const Item& item : list) {
    const Entry& entry = entries_[item.entry];
    if ((entry.places & places) == 0) to.push_back({item.text, entry.hash});
  }
}

std::uint32_t PageAddresses::Find(std::string_view address, std::uint32_t hash) const {
  return index_.Find(hash, [&](std::uint32_t number) { return EqualsIgnoreCase(entries_[number].text, address); });
}

void PageAddresses::Append(Place place, std::string_view address, std::uint32_t hash, std::uint32_t known) {
  if (known == IndexTable::kNone) {
    known = static_cast<std::uint32_t>(entries_.size());
    if (known == 0) entries_.reserve(kSeveral);
    entries_.push_back({address, hash, 0});
    index_.Insert(hash, known);
  }
  entries_[known].places |= Bit(place);
  std::vector<Item>& list = ListOf(place);
  if (list.empty()) list.reserve(kSeveral);
  list.push_back({address, known});
}

std::vector<PageAddresses::Item>& PageAddresses::ListOf(Place place) {
  switch (place) {
    case Place::kTag:
      return tag_;
    case Place::kMailLink:
      return mail_;
    case Place::kBetweenTags:
      break;
  }
  return between_;
}

}  // namespace quenlar
