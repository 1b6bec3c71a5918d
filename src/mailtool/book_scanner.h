// Cuts an address book, which comes in blocks of bytes, into pieces that can be searched for addresses one by one.
#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>

namespace quenlar {

// By definition a book's addresses are those of its lines, searched one after the other with a blank in front of each.
// Neither a blank nor a line end can stand in an address, and both end it. The same is true of every other ASCII
// character that no address may hold. So the scanner ends its pieces behind such a character and does not look for
// lines. No code page uses these characters as the first byte of a longer character.
//
//   BookScanner scanner([&](std::string_view piece) { Search(piece); });
//   while (ReadBlock(block)) scanner.Feed(block);
//   scanner.Finish();
class BookScanner {
 public:
  // Called inside Feed and Finish. The view is valid during the call.
  using PieceFunction = std::function<void(std::string_view piece)>;
  explicit BookScanner(PieceFunction piece) : piece_(std::move(piece)) {}

  // Takes the next bytes of the book.
  void Feed(std::string_view block);
  // Hands over what is left. Call it at the end of the book.
  void Finish();

  // A longer run of address characters, in bytes, is passed over. It is not an address, and it is not kept in memory.
  static constexpr std::size_t kLongestRun = std::size_t{64} << 20;

 private:
  void Keep(std::string_view bytes);

  PieceFunction piece_;
  std::string kept_;  // what follows the last cut
  bool passing_over_ = false;
};

}  // namespace quenlar
