// Lines of standard input, of bounded length.
#pragma once

#include <array>
#include <cstddef>
#include <string>

#include "cli/system.h"

namespace quenlar {

// Reads in blocks, so it must be the only reader of standard input.
class LineReader {
 public:
  enum class Outcome { kLine, kTooLong, kEnd };

  // `longest` is the limit in bytes, without the line feed. The console must outlive the reader.
  LineReader(Console& console, std::size_t longest) : console_(console), longest_(longest) {}

  // Reads the next line, without its line feed. The last line may have none. A line of more than `longest` bytes gives
  // kTooLong and is passed over without being held in memory. Blocks until a line has come.
  [[nodiscard]] Outcome Next(std::string& line);

 private:
  Console& console_;
  const std::size_t longest_;
  std::array<char, 65536> block_;
  std::size_t at_ = 0, end_ = 0;
};

}  // namespace quenlar
