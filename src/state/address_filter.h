// Which of the addresses that a page holds are wanted.
#pragma once

#include <string_view>

namespace quenlar {

// Decides which addresses are kept. The user may change the filters between two calls.
class AddressFilter {
 public:
  virtual ~AddressFilter() = default;
  // Returns whether `address` is to be recorded. Does not pump.
  [[nodiscard]] virtual bool Keeps(std::string_view address) = 0;
};

}  // namespace quenlar
