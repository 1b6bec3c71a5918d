// A list of texts that only grows and needs little memory: the texts lie one behind the other in large blocks.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <iterator>
#include <memory>
#include <string_view>
#include <vector>

#include "base/prefetch.h"

namespace quenlar {

// A short text costs one byte more than its length, rounded up to four bytes. Texts keep their places while the list
// grows.
class TextList {
 public:
  // Tells where a text lies. It is never the largest number, so a caller can use that one for "none".
  using Place = std::uint32_t;

  TextList() = default;
  TextList(const TextList&) = delete;
  TextList& operator=(const TextList&) = delete;
  TextList(TextList&&) = default;
  TextList& operator=(TextList&&) = default;

  [[nodiscard]] std::uint32_t Count() const { return count_; }
  // The text at a place that Add has returned. The view is valid until Clear.
  [[nodiscard]] std::string_view At(Place place) const {
    const char* const head = Head(place);
    const auto length = static_cast<unsigned char>(*head);
    return length <= kLongestShort ? std::string_view(head + 1, length) : LongText(head);
  }
  // Asks the processor to load this text before it is needed.
  void Prefetch(Place place) const { quenlar::Prefetch(Head(place)); }

  // Copies `text` to the end of the list and returns its place. Throws std::bad_alloc when memory is used up, and
  // beyond the 16 GiB that places can address; the list is then unchanged.
  Place Add(std::string_view text) {
    const std::size_t units = (1 + text.size() + kUnit - 1) / kUnit;
    if (text.size() > kLongestShort || units > kBlockUnits - used_units_) return AddSlowly(text);
    const std::size_t unit = UnitAtEnd();
    char* const head = Head(unit);
    *head = static_cast<char>(text.size());
    std::memcpy(head + 1, text.data(), text.size());
    used_units_ += units;
    ++count_;
    return static_cast<Place>(unit);
  }
  // Removes all texts and gives their memory back.
  void Clear();

  // Goes through the texts in the order in which they were added.
  class Iterator {
   public:
    using difference_type = std::ptrdiff_t;
    using value_type = std::string_view;
    Iterator() = default;
    Iterator(const TextList& list, std::size_t unit) : list_(&list), unit_(unit) {}
    std::string_view operator*() const { return list_->At(static_cast<Place>(unit_)); }
    Iterator& operator++() {
      unit_ = list_->UnitBehind(unit_);
      return *this;
    }
    Iterator operator++(int) {
      Iterator before = *this;
      ++*this;
      return before;
    }
    bool operator==(const Iterator&) const = default;

   private:
    const TextList* list_ = nullptr;
    std::size_t unit_ = 0;
  };
  [[nodiscard]] Iterator begin() const { return {*this, 0}; }
  [[nodiscard]] Iterator end() const { return {*this, UnitAtEnd()}; }

 private:
  static constexpr std::size_t kUnit = 4;  // texts begin at multiples of it, so that 32 bits address 16 GiB
  static constexpr std::size_t kBlockBytes = std::size_t{1} << 20;
  static constexpr std::size_t kBlockUnits = kBlockBytes / kUnit;
  static constexpr std::size_t kMaxBlocks = (std::size_t{1} << 32) / kBlockUnits - 1;
  // The length stands before its text: one byte for up to kLongestShort, otherwise kLong and four bytes. kRest stands
  // where the texts of a block end before the block does.
  static constexpr unsigned char kLongestShort = 253, kRest = 254, kLong = 255;

  [[nodiscard]] char* Head(std::size_t unit) const { return blocks_[unit / kBlockUnits] + unit % kBlockUnits * kUnit; }
  [[nodiscard]] std::size_t UnitAtEnd() const { return blocks_.size() * kBlockUnits - (kBlockUnits - used_units_); }
  // Where the next text begins, or UnitAtEnd behind the last one.
  [[nodiscard]] std::size_t UnitBehind(std::size_t unit) const {
    const std::string_view text = At(static_cast<Place>(unit));
    const std::size_t bytes = static_cast<std::size_t>(text.data() - Head(unit)) + text.size();
    const std::size_t behind = unit + (bytes + kUnit - 1) / kUnit;
    const bool has_rest = behind % kBlockUnits != 0 && behind != UnitAtEnd();
    if (!has_rest || static_cast<unsigned char>(*Head(behind)) != kRest) return behind;
    return (behind / kBlockUnits + 1) * kBlockUnits;
  }
  static std::string_view LongText(const char* head);
  // Add for a long text, and for one that needs a new block.
  Place AddSlowly(std::string_view text);
  // Makes room for that many units side by side and returns the first.
  std::size_t Reserve(std::size_t units);

  std::vector<char*> blocks_;                    // a text longer than a block takes several that lie side by side
  std::vector<std::unique_ptr<char[]>> memory_;  // behind them
  std::size_t used_units_ = kBlockUnits;         // of the last block
  std::uint32_t count_ = 0;
};

static_assert(std::forward_iterator<TextList::Iterator>);

}  // namespace quenlar
