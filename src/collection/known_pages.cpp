#include "collection/known_pages.h"

#include <algorithm>

namespace quenlar {
namespace {

constexpr std::uint64_t kDepthBits = 0xFF;

std::uint64_t KeyBits(std::int64_t key) { return static_cast<std::uint64_t>(key) & ~kDepthBits; }
std::uint64_t DepthBits(int depth) { return static_cast<std::uint64_t>(std::clamp(depth, 0, 254)) + 1; }

}  // namespace

// The slot that holds the key, or the free one where it belongs.
std::size_t KnownPages::SlotOf(std::uint64_t key) const {
  const std::size_t mask = slots_.size() - 1;
  std::size_t slot = (key >> 8) & mask;
  while (slots_[slot] != 0 && (slots_[slot] & ~kDepthBits) != key) slot = (slot + 1) & mask;
  return slot;
}

bool KnownPages::Has(std::int64_t key, int depth) const {
  if (slots_.empty()) return false;
  const std::uint64_t found = slots_[SlotOf(KeyBits(key))];
  return found != 0 && (found & kDepthBits) <= DepthBits(depth);
}

void KnownPages::Add(std::int64_t key, int depth) {
  if (used_ * 4 >= slots_.size() * 3) Grow();
  std::uint64_t& slot = slots_[SlotOf(KeyBits(key))];
  if (slot == 0) ++used_;
  slot = KeyBits(key) | DepthBits(depth);
}

void KnownPages::Clear() {
  slots_.clear();
  used_ = 0;
}

void KnownPages::Grow() {
  const std::vector<std::uint64_t> before = std::move(slots_);
  const std::size_t size = before.empty() ? kFirstSlots : std::min(before.size() * 2, kMostSlots);
  slots_.assign(size, 0);
  if (size == before.size()) {
    used_ = 0;
    return;
  }
  for (const std::uint64_t entry : before) {
    if (entry != 0) slots_[SlotOf(entry & ~kDepthBits)] = entry;
  }
}

}  // namespace quenlar
