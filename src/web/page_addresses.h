// The addresses that one page has given so far, in three lists by the place in which they were found.
#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

#include "base/text_hash.h"
#include "platform/index_table.h"

namespace quenlar {

// Each list holds its addresses in the order in which they were found, and no address twice: of two that differ only in
// ASCII letter case the first one stays. The lists hold views into the page, which must stay valid. They have no upper
// limit, because a page is always harvested whole.
//
//   PageAddresses addresses(found.hash());
//   addresses.Add(Place::kBetweenTags, addresses.Ready(text), [&](std::string_view a) { return filter.Keeps(a); });
//   for (std::uint32_t number : addresses.TextList()) Record(addresses.At(number));
class PageAddresses {
 public:
  // Where an address was found: inside a tag, inside a tag that is a mail link, or in the text between two tags.
  enum class Place : std::uint8_t { kTag = 1, kMailLink = 2, kBetweenTags = 4 };
  // Numbers for At, in the order of the list.
  using List = std::vector<std::uint32_t>;

  explicit PageAddresses(const TextHash& hash) : hash_(hash) {}

  // An address and the hash that ignores its letter case.
  struct Address {
    std::string_view text;
    std::uint32_t hash;
  };
  // Prepares an address for Add: computes its hash and asks the processor to load what Add will read. A caller that
  // does so some addresses ahead never waits for memory in Add.
  [[nodiscard]] Address Ready(std::string_view address) const {
    const std::uint32_t hash = hash_.IgnoringCase(address);
    index_.Prefetch(hash);
    return {address, hash};
  }

  // Appends the address to the list of `place` unless that list has it already or `keeps(address)` is false. `keeps` is
  // not called for an address that the list has.
  template <typename Keeps>
  void Add(Place place, const Address& address, Keeps keeps) {
    const std::uint32_t known = Find(address);
    if (known != IndexTable::kNone && (entries_[known].places & Bit(place)) != 0) return;
    if (keeps(address.text)) Append(place, address, known);
  }

  // The addresses that the reader of the page sees: those of mail links, then those between tags that are not in the
  // first group.
  [[nodiscard]] List TextList() const;
  // The addresses that stand inside tags and are not in TextList.
  [[nodiscard]] List TagList() const;
  // The address with this number.
  [[nodiscard]] Address At(std::uint32_t number) const { return {entries_[number].text, entries_[number].hash}; }

 private:
  struct Entry {
    std::string_view text;
    std::uint32_t hash;
    std::uint8_t places;  // the lists that have it; 0: another spelling of an entry
  };
  static constexpr std::uint8_t Bit(Place place) { return static_cast<std::uint8_t>(place); }
  [[nodiscard]] std::uint32_t Find(const Address& address) const;
  void Append(Place place, const Address& address, std::uint32_t known);
  [[nodiscard]] List& ListOf(Place place);
  void TakeUnless(std::uint8_t places, const List& list, List& to) const;

  TextHash hash_;
  IndexTable index_;  // of the entries with the first spelling of their address
  std::vector<Entry> entries_;
  List tag_, mail_, between_;
};

}  // namespace quenlar
