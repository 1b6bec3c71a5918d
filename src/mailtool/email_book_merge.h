// The engine of the mailing list tool: the opened address books and the merged list of distinct addresses.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "base/status.h"
#include "mailtool/text_list.h"
#include "platform/code_page.h"
#include "platform/event_loop.h"
#include "platform/files.h"
#include "state/address_filter.h"

namespace quenlar {

// Returns the file name of a path: the part behind its last "\", or its last "/" when that separates folders. A path
// without a separator is returned whole.
[[nodiscard]] std::string FileTitleOf(std::string_view path);

// One opened address book.
struct Book {
  std::string Path;
  std::string Mark;  // "*" characters for the second, third ... book of one file name
  // Returns what the list box shows: the file name, a blank and the Mark, trimmed.
  [[nodiscard]] std::string ShownText() const;
};

// The most entries that the window walks through. It counts in 16 bits, and answers a longer list with "Overflow !".
// The engine itself holds as many addresses as memory does, and the command line knows no such limit.
// Kept: EmailMergeTool.ShowsAndSavesAsManyAddressesAsSixteenBitsCount.
inline constexpr std::uint32_t kMaxListed = 32767;

// The merged addresses, each once, in the order and spelling of their first occurrence. Addresses that differ only in
// ASCII letter case are the same.
class AddressList {
 public:
  AddressList();
  ~AddressList();
  // Finds all addresses in `text` and adds those that are new. Returns whether it has added any. May throw
  // std::bad_alloc.
  bool AddMatchesToAddressList(std::string_view text);
  // From now on only addresses that `filter` keeps are added. It must outlive the list.
  void SetFilter(AddressFilter* filter);
  [[nodiscard]] std::uint32_t Count() const;
  [[nodiscard]] TextList::Iterator begin() const;
  [[nodiscard]] TextList::Iterator end() const;
  void Clear();

 private:
  struct Impl;
  std::unique_ptr<Impl> impl_;
};

// Opens books, merges them and saves the result.
//
//   eMailBookMerge merge;
//   merge.AddBook("/home/ann/friends.txt");
//   for (const std::string& message : merge.Extract(files, code_page, loop)) Warn(message);
//   const Status saved = merge.Save(files, code_page, "/home/ann/all.txt");
class eMailBookMerge {
 public:
  std::vector<Book> BookList;
  AddressList Addresses;

  // Addresses that `suppression` does not keep are left out. It must outlive this object.
  void SetSuppression(AddressFilter* suppression) { Addresses.SetFilter(suppression); }

  // Appends the book at `path` (absolute, UTF-8) and marks a file name that occurs again. Returns false when there is a
  // book with the same path; ASCII letter case is ignored. kLimit with "Overflow !" beyond kMaxListed books.
  [[nodiscard]] Result<bool> AddBook(const std::string& path);

  // Puts BookList into the order of the items of the list box, which sorts them.
  void SyncBookListToListBox(const std::vector<std::string>& items);

  // Adds the addresses of all books to Addresses, book by book in the order of BookList. Pumps once a book. An address
  // never spans two lines. Returns a message for each book that could not be read; the others are merged.
  std::vector<std::string> Extract(const Files& files, const CodePage& code_page, EventLoop& loop);

  // Replaces the file at `path` with the merged addresses in one step: one address and a blank on each line, CR LF, in
  // the ANSI code page.
  Status Save(Files& files, const CodePage& code_page, const std::string& path) const;
};

}  // namespace quenlar
