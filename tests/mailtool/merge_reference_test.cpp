// The engine against the algorithm as it is defined: one growing buffer, one regular expression, a linear comparison.
#include <random>
#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

#include "base/ascii.h"
#include "base/windows1252.h"
#include "mailtool/email_book_merge.h"
#include "support/fake_event_loop.h"
#include "support/fake_system.h"
#include "support/in_memory_files.h"
#include "support/reference_pattern.h"
#include "support/rounds.h"

namespace quenlar {
namespace {

using Strings = std::vector<std::string>;

Strings Lines(const std::string& book) {
  Strings lines;
  std::string line;
  for (std::size_t i = 0; i < book.size(); ++i) {
    if (book[i] != '\r' && book[i] != '\n') {
      line += book[i];
      continue;
    }
    if (book[i] == '\r' && i + 1 < book.size() && book[i + 1] == '\n') ++i;
    lines.push_back(line);
    line.clear();
  }
  if (!line.empty()) lines.push_back(line);
  return lines;
}

Strings Reference(const Strings& books) {
  static const auto pattern = BoostPattern("\\b[a-z0-9._%+-]+@[a-z0-9.-]+\\.[a-z]{2,4}\\b");
  Strings addresses;
  std::string buffer;
  for (const std::string& book : books) {
    for (const std::string& line : Lines(Windows1252ToUtf8(book))) buffer += " " + line;
    for (const std::string_view match : pattern->FindAll(buffer)) {
      const std::string found(match);
      const auto equal = [&](const std::string& known) { return Lower(known) == Lower(found); };
      if (std::none_of(addresses.begin(), addresses.end(), equal)) addresses.push_back(found);
    }
  }
  return addresses;
}

Strings Merged(const Strings& books, std::size_t block_size) {
  InMemoryFiles files;
  FakeCodePage code_page;
  FakeEventLoop loop;
  eMailBookMerge merge;
  files.SetBlockSize(block_size);
  for (std::size_t i = 0; i < books.size(); ++i) {
    const std::string path = "/" + std::to_string(i);
    files.Put(path, books[i]);
    EXPECT_TRUE(merge.AddBook(path).ok());
  }
  EXPECT_TRUE(merge.Extract(files, code_page, loop).empty());
  Strings addresses;
  for (const std::string_view address : merge.Addresses) addresses.emplace_back(address);
  return addresses;
}

TEST(MergeAgainstItsDefinition, AgreesOnRandomBooksInBlocksOfAnySize) {
  const std::string kPieces[] = {"a",    "B",   "7",   "_",  ".",   ".",  "%",  "+",    "-",      "@",     "@",
                                 "@",    "com", "Com", "de", "x@y", ".z", " ",  "\r\n", "\n",     "\r",    "\t",
                                 "\xE9", "\0",  "<",   ">",  ";",   ",",  "\"", "info", "a@b.cc", "A@B.cc"};
  std::mt19937 random(20240601);
  for (std::size_t round = 0; round < Rounds(3000); ++round) {
    Strings books(1 + random() % 3);
    for (std::string& book : books) {
      for (std::size_t length = random() % 60; length > 0; --length) book += kPieces[random() % std::size(kPieces)];
    }
    const Strings expected = Reference(books);
    for (const std::size_t block_size : {1u, 2u, 7u, 4096u}) ASSERT_EQ(Merged(books, block_size), expected) << round;
  }
}

TEST(MergeAgainstItsDefinition, AgreesOnAddressesNextToEveryByte) {
  Strings books;
  for (int byte = 0; byte < 256; ++byte) {
    const std::string c(1, static_cast<char>(byte));
    const std::string n = std::to_string(byte);
    books.push_back("l" + n + "@a.com" + c + c + "r" + n + "@b.com" + c + "m" + n + c + "@c.com d" + n + "@d" + c +
                    ".com e" + n + "@e.co" + c + "m");
  }
  const Strings expected = Reference(books);
  for (const std::size_t block_size : {1u, 3u, 4096u}) EXPECT_EQ(Merged(books, block_size), expected) << block_size;
}

}  // namespace
}  // namespace quenlar
