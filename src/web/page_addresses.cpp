#include "web/page_addresses.h"

#include "base/ascii.h"

namespace quenlar {
namespace {

constexpr std::size_t kSeveral = 16;  // a page with an address often has several

}  // namespace

PageAddresses::List PageAddresses::TextList() const {
  List list;
  list.reserve(mail_.size() + between_.size());
  TakeUnless(0, mail_, list);
  TakeUnless(Bit(Place::kMailLink), between_, list);
  return list;
}

PageAddresses::List PageAddresses::TagList() const {
  List list;
  TakeUnless(Bit(Place::kMailLink) | Bit(Place::kBetweenTags), tag_, list);
  return list;
}

void PageAddresses::TakeUnless(std::uint8_t places, const List& list, List& to) const {
  for (const std::uint32_t number : list) {
    const std::uint8_t own = entries_[number].places;
    const std::uint8_t all = own != 0 ? own : entries_[Find(At(number))].places;
    if ((all & places) == 0) to.push_back(number);
  }
}

std::uint32_t PageAddresses::Find(const Address& address) const {
  return index_.Find(address.hash,
                     [&](std::uint32_t number) { return EqualsIgnoreCase(entries_[number].text, address.text); });
}

void PageAddresses::Append(Place place, const Address& address, std::uint32_t known) {
  List& list = ListOf(place);
  if (list.empty()) list.reserve(kSeveral);
  if (entries_.empty()) entries_.reserve(kSeveral);
  const auto next = static_cast<std::uint32_t>(entries_.size());
  if (known == IndexTable::kNone) {
    entries_.push_back({address.text, address.hash, Bit(place)});
    index_.Insert(address.hash, next);
    list.push_back(next);
  } else {
    entries_[known].places |= Bit(place);
    const bool same = entries_[known].text == address.text;
    if (!same) entries_.push_back({address.text, address.hash, 0});
    list.push_back(same ? known : next);
  }
}

PageAddresses::List& PageAddresses::ListOf(Place place) {
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
