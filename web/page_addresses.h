// The addresses that one page has given so far, sorted by where they were found.
#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

#include "base/index_table.h"
#include "base/text_hash.h"

namespace quenlar {

// Three lists in the order in which addresses were found, none holding two that are equal but for ASCII letter case;
// the first spelling stays. Views, no copies. A list may be longer than 32,767: a page is always harvested whole.
class PageAddresses {
 public:
  enum class Place : std::uint8_t { kTag = 1, kMailLink = 2, kBetweenTags = 4 };
  struct Address {
    std::string_view text;
    std::uint32_t hash;  // ignoring case
  };

  explicit PageAddresses(const TextHash& hash) : hash_(hash) {}

  // Appends to the list of `place` what is not yet there and passes `keeps`, which is asked for nothing else.
  template <typename Keeps>
  void Add(Place place, std::string_view address, Keeps keeps) {
    const std::uint32_t hash = hash_.IgnoringCase(address);
    const std::uint32_t known = Find(address, hash);
    if (known != IndexTable::kNone && (entries_[known].places & Bit(place)) != 0) return;
    if (keeps(address)) Append(place, address, hash, known);
  }

  // What a page has in its text: mail links, then what stands between tags and is no mail link.
  [[nodiscard]] std::vector<Address> TextList() const;
  // What it has in its tags and nowhere else.
  [[nodiscard]] std::vector<Address> TagList() const;

 private:
  struct Entry {
    std::string_view text;
    std::uint32_t hash;
    std::uint8_t places;  // the lists that have it
  };
  struct Item {
    std::string_view text;  // as spelled in this place
    std::uint32_t entry;
  };
  static constexpr std::uint8_t Bit(Place place) { return static_cast<std::uint8_t>(place); }
  [[nodiscard]] std::uint32_t Find(std::string_view address, std::uint32_t hash) const;
  void Append(Place place, std::string_view address, std::uint32_t hash, std::uint32_t known);
  [[nodiscard]] std::vector<Item>& ListOf(Place place);
  void TakeUnless(std::uint8_t places, const std::vector<Item>& list, std::vector<Address>& to) const;

  TextHash hash_;
  IndexTable index_;
  std::vector<Entry> entries_;
  std::vector<Item> tag_, mail_, between_;
};

}  // namespace quenlar
