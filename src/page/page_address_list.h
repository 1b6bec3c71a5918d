// The addresses of a page: each once a place, protected ones apart until it is known which stand there plainly too.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

#include "base/text_arena.h"
#include "base/text_hash.h"
#include "page/address_place.h"
#include "platform/index_table.h"

namespace quenlar {

struct PageAddress {
  std::string_view address;  // local part as first written on the page; domain in lower case and A-labels
  std::string_view written;  // as it stands here, references, escapes and percent signs decoded; UTF-8
  AddressPlace place = AddressPlace::kText;
};

class PageAddressList {
 public:
  [[nodiscard]] bool empty() const { return entries_.empty(); }
  // The texts are copied.
  void Add(const PageAddress& found);

  // In the order they were added. Protected addresses that were also added plainly are left out, and all protected
  // ones unless `with_protected`. Views into the list.
  [[nodiscard]] std::vector<PageAddress> Listed(bool with_protected) const;
  [[nodiscard]] std::size_t ProtectedCount() const;

 private:
  // An address, whatever its letter case.
  struct Address {
    std::string_view first;    // as it came first
    std::string_view plain;    // as first written plainly; empty: only protected so far
    std::string_view decoded;  // as first decoded; empty: never protected
    std::uint8_t places = 0;   // a bit a place
  };
  struct Entry {
    std::uint32_t address;
    AddressPlace place;
    std::string_view written;
  };

  // The number of the address in `addresses_`.
  std::uint32_t NumberOf(std::string_view address);

  TextArena texts_;
  TextHash hash_;
  IndexTable index_;
  std::vector<Address> addresses_;
  std::vector<Entry> entries_;
};

}  // namespace quenlar
