#include "archive/sources.h"

#include <algorithm>

namespace quenlar {

Result<std::string> ReadUpTo(ByteSource& source, std::size_t size) {
  constexpr std::size_t kPiece = 256u << 10;
  std::string text;
  while (text.size() < size) {
    const std::size_t before = text.size();
    text.resize(before + std::min(kPiece, size - before));
    const Result<std::size_t> got = source.Read(text.data() + before, text.size() - before);
    if (!got.ok()) return got.status();
    text.resize(before + got.value());
    if (got.value() == 0) break;
  }
  return text;
}

}  // namespace quenlar
