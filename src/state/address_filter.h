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

// Keeps what both keep.
class BothFilters final : public AddressFilter {
 public:
  // Both must outlive it.
  BothFilters(AddressFilter& first, AddressFilter& second) : first_(first), second_(second) {}
  [[nodiscard]] bool Keeps(std::string_view address) override {
    return first_.Keeps(address) && second_.Keeps(address);
  }

 private:
  AddressFilter& first_;
  AddressFilter& second_;
};

}  // namespace quenlar
