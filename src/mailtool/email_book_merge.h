// The engine of the mailing list tool: the opened address books and the merged list of distinct addresses.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/status.h"
#include "mailtool/text_list.h"
#include "platform/code_page.h"
#include "platform/event_loop.h"
#include "platform/files.h"

namespace quenlar {

// The part of a path behind its last "\" (or "/" where that separates folders); the whole text when there is none.
[[nodiscard]] std::string FileTitleOf(std::string_view path);

struct Book {
  std::string Path;
  std::string Mark;  // "*" characters for the second, third ... book of one file name
  // File name, blank, Mark, trimmed.
  [[nodiscard]] std::string ShownText() const;
};

// The most entries that the window walks through. It counts in 16 bits, and answers a longer list with "Overflow !".
// The engine itself holds as many addresses as memory does, and the command line knows no such limit.
// Kept: EmailMergeTool.ShowsAndSavesAsManyAddressesAsSixteenBitsCount.
inline constexpr std::uint32_t kMaxListed = 32767;

// The distinct addresses found, in the order and spelling of their first occurrence; compared without ASCII case.
class AddressList {
 public:
  AddressList();
  ~AddressList();
  // Adds every new address match of the text. True when at least one was added.
  bool AddMatchesToAddressList(std::string_view text);
  [[nodiscard]] std::uint32_t Count() const;
  [[nodiscard]] TextList::Iterator begin() const;
  [[nodiscard]] TextList::Iterator end() const;
  void Clear();

 private:
  struct Impl;
  std::unique_ptr<Impl> impl_;
};

class eMailBookMerge {
 public:
  std::vector<Book> BookList;
  AddressList Addresses;

  // Appends the book unless one with the same path (without ASCII case) is there, and marks a repeated file name.
  // kLimit with "Overflow !" beyond kMaxListed books. True when added.
  [[nodiscard]] Result<bool> AddBook(const std::string& path);

  // Puts BookList into the order of the (sorted) list box's items.
  void SyncBookListToListBox(const std::vector<std::string>& items);

  // Scans all books, in order, into Addresses. Pumps once a book. Lines are joined as the format says, so an address
  // never spans two lines. Returns a message for each book that could not be read; the others are merged all the same.
  std::vector<std::string> Extract(const Files& files, const CodePage& code_page, EventLoop& loop);

  // One address and one blank a line, CR LF, ANSI code page; the file is replaced in one step.
  Status Save(Files& files, const CodePage& code_page, const std::string& path) const;
};

}  // namespace quenlar
