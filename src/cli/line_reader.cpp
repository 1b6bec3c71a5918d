#include "cli/line_reader.h"

#include <cstring>

namespace quenlar {

LineReader::Outcome LineReader::Next(std::string& line) {
  constexpr std::size_t kKeptCapacity = 1 << 20;
  line.clear();
  if (line.capacity() > kKeptCapacity) line.shrink_to_fit();

  bool begun = false, too_long = false;
  for (;;) {
    if (at_ == end_) {
      at_ = 0;
      end_ = console_.Read(block_.data(), block_.size());
      if (end_ == 0) break;
    }
    begun = true;
    const char* const from = block_.data() + at_;
    const void* const feed = std::memchr(from, '\n', end_ - at_);
    const std::size_t length = feed != nullptr ? static_cast<const char*>(feed) - from : end_ - at_;
    if (!too_long && line.size() + length > longest_) {
      too_long = true;
      line = std::string();
    }
    if (!too_long) line.append(from, length);
    at_ += length + (feed != nullptr ? 1 : 0);
    if (feed != nullptr) break;
  }
  if (!begun) return Outcome::kEnd;
  return too_long ? Outcome::kTooLong : Outcome::kLine;
}

}  // namespace quenlar
