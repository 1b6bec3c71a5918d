// Keeps many short texts in few blocks of memory, so that a text costs its bytes and nothing else.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <memory>
#include <string_view>
#include <vector>

namespace quenlar {

// Texts can be added and not removed. Views stay valid as long as the arena lives, and survive its move.
class TextArena {
 public:
  // Copies `text` and returns a view of the copy. May throw std::bad_alloc; the arena is then unchanged.
  [[nodiscard]] std::string_view Keep(std::string_view text) {
    if (text.size() > left_) MakeRoom(text.size());
    char* place = free_;
    if (!text.empty()) std::memcpy(place, text.data(), text.size());
    free_ += text.size();
    left_ -= text.size();
    return {place, text.size()};
  }

  // The heap memory in use, in bytes, including what is still free in the last block.
  [[nodiscard]] std::size_t MemoryBytes() const { return allocated_ + blocks_.capacity() * sizeof(blocks_[0]); }

 private:
  static constexpr std::size_t kSmallestBlock = 2048, kLargestBlock = std::size_t{1} << 20;

  // A new block has a quarter of the size of all before it, so a small arena stays small and a large one has few
  // blocks. A text longer than that gets a block of its own size. The rest of the block before it stays unused, which
  // is little compared with the text.
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
