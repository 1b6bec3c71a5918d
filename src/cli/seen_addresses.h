// Remembers which addresses have been printed, in little memory.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

#include "base/text_hash.h"

namespace quenlar {

// Keeps 64 bits of a seeded hash an address, so ten million addresses take 128 MB, and one of them is lost by chance in
// one of 300,000 lists of that size.
class SeenAddresses {
 public:
  SeenAddresses();
  // True for an address that comes for the first time, whatever its letter case.
  [[nodiscard]] bool Add(std::string_view address);

 private:
  void Grow();

  const TextHash first_, second_;
  std::vector<std::uint64_t> slots_;  // 0: free
  std::size_t used_ = 0;
};

}  // namespace quenlar
