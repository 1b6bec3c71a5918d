// Cuts the bytes of an address book, as they come in blocks, where no address can be cut.
#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>

namespace quenlar {

// The addresses of a book are those of its lines, each with a blank in front, one after the other. Neither a blank nor
// a line end can stand in an address, or next to one without ending it, and the same is true of every other ASCII
// character outside the alphabet of addresses; so the book may be searched in pieces that end behind such a character,
// and its lines need not be found. In no code page is such a character the first byte of a longer one.
class BookScanner {
 public:
  using PieceFunction = std::function<void(std::string_view piece)>;
  explicit BookScanner(PieceFunction piece) : piece_(std::move(piece)) {}

  void Feed(std::string_view block);
  // The book has ended.
  void Finish();

  // A run of address characters longer than this is passed over: nobody's address, and no reason to keep it in memory.
  static constexpr std::size_t kLongestRun = std::size_t{64} << 20;

 private:
  void Keep(std::string_view bytes);

  PieceFunction piece_;
  std::string kept_;  // what follows the last cut
  bool passing_over_ = false;
};

}  // namespace quenlar
