#include "mailtool/text_list.h"

#include <cstring>
#include <new>

namespace quenlar {
namespace {

// A text is preceded by its length: one byte, or kLong and four bytes.
constexpr unsigned char kLong = 255;
constexpr std::size_t kLongHead = 1 + sizeof(std::uint32_t);

std::size_t HeadBytes(std::size_t length) { return length < kLong ? 1 : kLongHead; }

}  // namespace

std::string_view TextList::At(std::uint32_t index) const {
  const char* const head = Address(places_[index]);
  const auto length = static_cast<unsigned char>(*head);
  if (length != kLong) return {head + 1, length};
  std::uint32_t long_length = 0;
  std::memcpy(&long_length, head + 1, sizeof long_length);
  return {head + kLongHead, long_length};
}

void TextList::Add(std::string_view text) {
  if (text.size() > UINT32_MAX) throw std::bad_alloc();
  const std::size_t head_bytes = HeadBytes(text.size());
  const std::size_t bytes = (head_bytes + text.size() + kUnit - 1) / kUnit * kUnit;
  const std::size_t place = Reserve(bytes);
  places_.push_back(static_cast<std::uint32_t>(place / kUnit));
  char* const head = blocks_[place / kBlockBytes] + place % kBlockBytes;
  if (head_bytes == 1) {
    *head = static_cast<char>(text.size());
  } else {
    const auto length = static_cast<std::uint32_t>(text.size());
    *head = static_cast<char>(kLong);
    std::memcpy(head + 1, &length, sizeof length);
  }
  std::memcpy(head + head_bytes, text.data(), text.size());
}

std::size_t TextList::Reserve(std::size_t bytes) {
  if (used_ + bytes <= kBlockBytes) {
    const std::size_t place = (blocks_.size() - 1) * kBlockBytes + used_;
    used_ += bytes;
    return place;
  }
  const std::size_t first = blocks_.size();
  const std::size_t count = (bytes + kBlockBytes - 1) / kBlockBytes;
  if (first + count > kMaxBlocks) throw std::bad_alloc();
  char* const memory = memory_.emplace_back(std::make_unique_for_overwrite<char[]>(count * kBlockBytes)).get();
  for (std::size_t i = 0; i < count; ++i) blocks_.push_back(memory + i * kBlockBytes);
  used_ = bytes - (count - 1) * kBlockBytes;
  return first * kBlockBytes;
}

void TextList::Clear() { *this = TextList(); }

}  // namespace quenlar
