// A list of texts that only grows, in little memory: the texts lie one behind the other in large blocks.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string_view>
#include <vector>

namespace quenlar {

class TextList {
 public:
  TextList() = default;
  TextList(const TextList&) = delete;
  TextList& operator=(const TextList&) = delete;
  TextList(TextList&&) = default;
  TextList& operator=(TextList&&) = default;

  [[nodiscard]] std::uint32_t Count() const { return static_cast<std::uint32_t>(places_.size()); }
  // Valid until Clear.
  [[nodiscard]] std::string_view At(std::uint32_t index) const;
  // Asks the processor to have this text at hand soon.
  void Prefetch(std::uint32_t index) const { __builtin_prefetch(Address(places_[index])); }

  // Throws std::bad_alloc when memory, or the 16 GiB that a place can tell apart, are used up.
  void Add(std::string_view text);
  // Gives the memory back.
  void Clear();

 private:
  static constexpr std::size_t kUnit = 4;  // texts begin at multiples of it, so that 32 bits address 16 GiB
  static constexpr std::size_t kBlockBytes = std::size_t{1} << 20;
  static constexpr std::size_t kMaxBlocks = (std::size_t{1} << 32) / (kBlockBytes / kUnit);

  [[nodiscard]] const char* Address(std::uint32_t place) const {
    return blocks_[place / (kBlockBytes / kUnit)] + place % (kBlockBytes / kUnit) * kUnit;
  }
  // The place of so many bytes, a multiple of kUnit.
  std::size_t Reserve(std::size_t bytes);

  std::vector<std::uint32_t> places_;            // of each text, in units
  std::vector<char*> blocks_;                    // a text longer than a block takes several that lie side by side
  std::vector<std::unique_ptr<char[]>> memory_;  // behind them
  std::size_t used_ = kBlockBytes;               // bytes of the last block
};

}  // namespace quenlar
