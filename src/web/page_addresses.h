// The addresses that one page has given so far, sorted by where they were found.
#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

#include "base/text_hash.h"
#include "state/index_table.h"

namespace quenlar {

// Three lists in the order in which addresses were found, none holding two that are equal but for ASCII letter case;
// the first spelling stays. Views, no copies. A list may be longer than 32,767: a page is always harvested whole.
class PageAddresses {
 public:
  enum class Place : std::uint8_t { kTag = 1, kMailLink = 2, kBetweenTags = 4 };
  // Numbers of addresses, in order.
  using List = std::vector<std::uint32_t>;

  explicit PageAddresses(const TextHash& hash) : hash_(hash) {}

  // An address and its hash, ignoring case.
  struct Address {
    std::string_view text;
    std::uint32_t hash;
  };
  // The address, ready to be added. Best asked for some addresses ahead: what Add looks at is then at hand.
  [[nodiscard]] Address Ready(std::string_view address) const {
    const std::uint32_t hash = hash_.IgnoringCase(address);
    index_.Prefetch(hash);
    return {address, hash};
  }

  // Appends to the list of `place` what is not yet there and passes `keeps`, which is asked for nothing else.
  template <typename Keeps>
  void Add(Place place, const Address& address, Keeps keeps) {
    const std::uint32_t known = Find(address);
    if (known != IndexTable::kNone && (entries_[known].places & Bit(place)) != 0) return;
    if (keeps(address.text)) Append(place, address, known);
  }

  // What a page has in its text: mail links, then what stands between tags and is no mail link.
  [[nodiscard]] List TextList() const;
  // What it has in its tags and nowhere else.
  [[nodiscard]] List TagList() const;
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
  IndexTable index_;  // of the entries that are no other spellings
  std::vector<Entry> entries_;
  List tag_, mail_, between_;
};

}  // namespace quenlar
