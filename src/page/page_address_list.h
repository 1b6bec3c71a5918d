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
  // `at` is where it stands in the page. The texts are copied.
  void Add(const PageAddress& found, std::size_t at);

  // In the order of the page, those of one place as they were added. Protected addresses that were also added plainly
  // are left out, and all protected ones unless `with_protected`. Views into the list.
  [[nodiscard]] std::vector<PageAddress> Listed(bool with_protected) const;
  [[nodiscard]] std::size_t ProtectedCount() const;

 private:
  // An address, whatever its letter case.
  struct Address {
    std::string_view first;   // as it was added first
    std::uint8_t places = 0;  // a bit a place
  };
  struct Entry {
    std::uint32_t address;
    AddressPlace place;
    std::string_view spelled, written;
    std::size_t at;
  };

  // The number of the address in `addresses_`.
  std::uint32_t NumberOf(std::string_view address);
  [[nodiscard]] std::vector<Entry> InOrder() const;

  TextArena texts_;
  TextHash hash_;
  IndexTable index_;
  std::vector<Address> addresses_;
  std::vector<Entry> entries_;
  bool in_order_ = true;
};

}  // namespace quenlar
