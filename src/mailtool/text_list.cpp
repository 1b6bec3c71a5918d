#include "mailtool/text_list.h"

#include <cstring>
#include <new>

#include "platform/large_memory.h"

namespace quenlar {
namespace {

constexpr std::size_t kLongHead = 1 + sizeof(std::uint32_t);

}  // namespace

std::string_view TextList::LongText(const char* head) {
  std::uint32_t length = 0;
  std::memcpy(&length, head + 1, sizeof length);
  return {head + kLongHead, length};
}

TextList::Place TextList::AddSlowly(std::string_view text) {
  if (text.size() > UINT32_MAX) throw std::bad_alloc();
  const bool is_long = text.size() > kLongestShort;
  const std::size_t head_bytes = is_long ? kLongHead : 1;
  const std::size_t unit = Reserve((head_bytes + text.size() + kUnit - 1) / kUnit);
  char* const head = Head(unit);
  *head = static_cast<char>(is_long ? kLong : text.size());
  if (is_long) {
    const auto length = static_cast<std::uint32_t>(text.size());
    std::memcpy(head + 1, &length, sizeof length);
  }
  std::memcpy(head + head_bytes, text.data(), text.size());
  ++count_;
  return static_cast<Place>(unit);
}

std::size_t TextList::Reserve(std::size_t units) {
  if (used_units_ + units <= kBlockUnits) {
    const std::size_t unit = UnitAtEnd();
    used_units_ += units;
    return unit;
  }
  const std::size_t first = blocks_.size();
  const std::size_t count = (units + kBlockUnits - 1) / kBlockUnits;
  if (first + count > kMaxBlocks) throw std::bad_alloc();
  blocks_.reserve(first + count);
  char* const memory = memory_.emplace_back(std::make_unique_for_overwrite<char[]>(count * kBlockBytes)).get();
  WishForAllPages(memory, count * kBlockBytes);
  if (used_units_ < kBlockUnits) *Head(UnitAtEnd()) = static_cast<char>(kRest);
  for (std::size_t i = 0; i < count; ++i) blocks_.push_back(memory + i * kBlockBytes);
  used_units_ = units - (count - 1) * kBlockUnits;
  return first * kBlockUnits;
}

void TextList::Clear() { *this = TextList(); }

}  // namespace quenlar
