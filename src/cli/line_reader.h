// Lines of standard input, of bounded length.
#pragma once

#include <array>
#include <cstddef>
#include <string>

#include "cli/system.h"

namespace quenlar {

class LineReader {
 public:
  enum class Outcome { kLine, kTooLong, kEnd };

  LineReader(Console& console, std::size_t longest) : console_(console), longest_(longest) {}

  // The next line without its line feed; the last one may have none. A line of more than `longest` bytes is passed
  // over, and never held in memory. Blocks.
  [[nodiscard]] Outcome Next(std::string& line);

 private:
  Console& console_;
  const std::size_t longest_;
  std::array<char, 65536> block_;
  std::size_t at_ = 0, end_ = 0;
};

}  // namespace quenlar
