// The found-address table: every address of the project, with the page on which it was found.
#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <functional>
#include <string>
#include <string_view>

#include "base/prefetch.h"
#include "base/text_arena.h"
#include "base/text_hash.h"
#include "platform/index_table.h"
#include "state/address_filter.h"

namespace quenlar {

// One record. Its views stay valid until the table is cleared, even while records are added. All texts are UTF-8.
struct FoundAddress {
  std::string_view URL;      // the page where it was found
  std::string_view Address;  // in the case in which it was found
  std::string_view Title;    // the page's title
  bool TagOnly = false;      // the page's only address stood inside a tag
};

// A growing list of records in the order in which they were found, with an index over the addresses.
//
// Every address is kept once, in memory that never moves, and the records of one page share its address and title. So a
// record costs 16 bytes and its text, and about ten bytes of index. Duplicate tests compare without ASCII letter case
// and take constant time. Adding may throw std::bad_alloc; the table is then as it was before.
//
//   FoundAddresses::PageTexts page{url, title};
//   for (std::string_view address : addresses_of_page) found.AddIfNew(page, address, false);
class FoundAddresses {
 public:
  FoundAddresses() = default;

  // The number of records. At() takes indices below it.
  [[nodiscard]] std::uint32_t Count() const { return static_cast<std::uint32_t>(records_.size()); }
  [[nodiscard]] FoundAddress At(std::uint32_t index) const {
    const Record& record = records_[index];
    const Page& page = pages_[record.page];
    return {page.url, record.address(), page.title, record.tag_only != 0};
  }

  // Returns whether the Address of any record equals `address`, ASCII letter case ignored.
  [[nodiscard]] bool Contains(std::string_view address) const;
  // The same for a caller that has the hash already: `hash` is hash().IgnoringCase(address).
  [[nodiscard]] bool Contains(std::string_view address, std::uint32_t hash) const;

  // Appends without a duplicate test, because a report that is read back may list an address twice. The texts are
  // copied. Records of the same page that come one after the other share the copies of its URL and title.
  void Add(const FoundAddress& record);

  // A page whose records are added one by one. The caller fills in `url` and `title` and keeps both texts valid while
  // it adds; the table fills in the rest. The texts are copied with the page's first record, so a page without new
  // addresses costs nothing.
  struct PageTexts {
    std::string_view url, title;
    std::uint64_t filling = 0;  // the state of the table in which `number` is valid; 0: the texts are not yet copied
    std::uint32_t number = 0;   // the page's place in the table
  };
  // Appends a record of `page` unless the table contains an equal address. Returns whether it has appended.
  bool AddIfNew(PageTexts& page, std::string_view address, bool tag_only) {
    return AddIfNew(page, address, hash_.IgnoringCase(address), tag_only);
  }
  // The same for an address whose hash is known.
  bool AddIfNew(PageTexts& page, std::string_view address, std::uint32_t hash, bool tag_only);
  // The hash function of this table. It stays the same when the table is cleared.
  [[nodiscard]] const TextHash& hash() const { return hash_; }

  // These three ask the processor to load what a later duplicate test for this hash will read: the slot of the index,
  // then the record, then the record's text. Each needs what the one before it has loaded. So a caller that goes
  // through many addresses calls the first one farthest ahead, and the last one shortly before the test.
  void PrefetchSlot(std::uint32_t hash) const { index_.Prefetch(hash); }
  void PrefetchRecord(std::uint32_t hash) const {
    if (const auto number = index_.FirstGuess(hash)) Prefetch(&records_[*number]);
  }
  void PrefetchText(std::uint32_t hash) const {
    if (const auto number = index_.FirstGuess(hash)) Prefetch(records_[*number].text);
  }

  // Removes the records whose addresses `filter` does not keep, and returns how many these were. The others keep their
  // order and move up; views of them stay valid. May throw std::bad_alloc; the table is then as it was before.
  std::uint32_t RemoveUnwanted(AddressFilter& filter);

  // Gives the URL and the title of each page to `clean`, which returns what is left of the text, and puts that in their
  // place. Returns whether any of them has become shorter.
  bool CleanPages(const std::function<std::string(std::string_view text)>& clean);

  // Removes all records and gives their memory back. All views become invalid.
  void Clear();

  // The heap memory in use, in bytes, texts included.
  [[nodiscard]] std::size_t MemoryBytes() const;

 private:
  explicit FoundAddresses(const TextHash& hash, std::uint64_t filling) : hash_(hash), filling_(filling) {}

  struct Record {
    const char* text;
    std::uint32_t length;
    std::uint32_t page : 31;
    std::uint32_t tag_only : 1;
    [[nodiscard]] std::string_view address() const { return {text, length}; }
  };
  struct Page {
    std::string_view url, title;
  };
  [[nodiscard]] std::uint32_t AddPage(std::string_view url, std::string_view title);
  void Append(std::uint32_t page, std::string_view address, bool tag_only);

  std::deque<Record> records_;
  std::deque<Page> pages_;
  TextArena texts_;
  TextHash hash_;
  IndexTable index_;
  std::uint64_t filling_ = 1;  // counts the calls of Clear
};

}  // namespace quenlar
