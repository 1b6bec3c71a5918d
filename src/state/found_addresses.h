// The found-address table: every address of the project, with the page on which it was found.
#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <string_view>

#include "base/prefetch.h"
#include "base/text_arena.h"
#include "base/text_hash.h"
#include "state/index_table.h"

namespace quenlar {

// Views stay valid until the table is cleared, also while records are added.
struct FoundAddress {
  std::string_view URL;      // the page where it was found
  std::string_view Address;  // in the case in which it was found
  std::string_view Title;    // the page's title
  bool TagOnly = false;      // the page's only address stood inside a tag
};

class FoundAddresses {
 public:
  FoundAddresses() = default;

  [[nodiscard]] std::uint32_t Count() const { return static_cast<std::uint32_t>(records_.size()); }
  [[nodiscard]] FoundAddress At(std::uint32_t index) const {
    const Record& record = records_[index];
    const Page& page = pages_[record.page];
    return {page.url, record.address(), page.title, record.tag_only != 0};
  }

  // Whether a record's Address equals this one but for ASCII letter case; the answer of a linear scan.
  [[nodiscard]] bool Contains(std::string_view address) const;
  // The same for an address whose hash is known: hash().IgnoringCase(address).
  [[nodiscard]] bool Contains(std::string_view address, std::uint32_t hash) const;

  // Appends without a test (a report may list an address twice). Records of one page in a row share its texts.
  void Add(const FoundAddress& record);

  // A page to which records are added one by one; its texts are kept at its first one. They must stay valid as long
  // as the page is used.
  struct PageTexts {
    std::string_view url, title;
    std::uint64_t filling = 0;  // what the table knows the kept texts by: nothing yet
    std::uint32_t number = 0;
  };
  // Appends unless an equal address (see Contains) is there. True when appended.
  bool AddIfNew(PageTexts& page, std::string_view address, bool tag_only) {
    return AddIfNew(page, address, hash_.IgnoringCase(address), tag_only);
  }
  // The same for an address whose hash is known.
  bool AddIfNew(PageTexts& page, std::string_view address, std::uint32_t hash, bool tag_only);
  // Stays the same also when the table is cleared.
  [[nodiscard]] const TextHash& hash() const { return hash_; }

  // Ask the processor to have at hand soon what a test for an address with this hash will look at: its slot, then the
  // record in the slot, then the record's text. Each waits for memory where it is not asked some tests ahead.
  void PrefetchSlot(std::uint32_t hash) const { index_.Prefetch(hash); }
  void PrefetchRecord(std::uint32_t hash) const {
    if (const auto number = index_.FirstGuess(hash)) Prefetch(&records_[*number]);
  }
  void PrefetchText(std::uint32_t hash) const {
    if (const auto number = index_.FirstGuess(hash)) Prefetch(records_[*number].text);
  }

  // No records, memory given back.
  void Clear();

  // Heap memory in use, texts included.
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
