// Keeps many short texts in few blocks of memory.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <memory>
#include <string_view>
#include <vector>

namespace quenlar {

// Texts are only ever added; their views stay valid as long as the arena lives, also when it is moved.
class TextArena {
 public:
  [[nodiscard]] std::string_view Keep(std::string_view text) {
    if (text.size() > left_) MakeRoom(text.size());
    char* place = free_;
    if (!text.empty()) std::memcpy(place, text.data(), text.size());
    free_ += text.size();
    left_ -= text.size();
    return {place, text.size()};
  }

  [[nodiscard]] std::size_t MemoryBytes() const { return allocated_ + blocks_.capacity() * sizeof(blocks_[0]); }

 private:
  static constexpr std::size_t kSmallestBlock = 2048, kLargestBlock = std::size_t{1} << 20;

  // Blocks grow with what is kept, so that a small arena stays small. A text that is long for a block gets one of its
  // own size; what is left of the block before it is given up, which is little beside it.
  void MakeRoom(std::size_t size) {
    const std::size_t block = std::max(size, std::clamp(allocated_ / 4, kSmallestBlock, kLargestBlock));
    blocks_.push_back(std::make_unique_for_overwrite<char[]>(block));
    allocated_ += block;
    free_ = blocks_.back().get();
    left_ = block;
  }

  std::vector<std::unique_ptr<char[]>> blocks_;
  char* free_ = nullptr;
  std::size_t left_ = 0;
  std::size_t allocated_ = 0;
};

}  // namespace quenlar
