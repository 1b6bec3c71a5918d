// Bytes that are read once, from their beginning to their end.
#pragma once

#include <cstddef>

#include "base/status.h"

namespace quenlar {

class ByteSource {
 public:
  virtual ~ByteSource() = default;
  // Puts up to `size` bytes into `buffer` and returns their number, 0 only at the end.
  [[nodiscard]] virtual Result<std::size_t> Read(char* buffer, std::size_t size) = 0;
};

}  // namespace quenlar
