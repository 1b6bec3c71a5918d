#include "collection/known_pages.h"

#include <algorithm>

namespace quenlar {
namespace {

constexpr std::uint64_t kOrderBits = 0xFF;

std::uint64_t KeyBits(std::int64_t key) { return static_cast<std::uint64_t>(key) & ~kOrderBits; }
std::uint64_t OrderBits(int order) { return static_cast<std::uint64_t>(order) + 1; }

}  // namespace

// The slot that holds the key, or the free one where it belongs.
std::size_t KnownPages::SlotOf(std::uint64_t key) const {
  const std::size_t mask = slots_.size() - 1;
  std::size_t slot = (key >> 8) & mask;
  while (slots_[slot] != 0 && (slots_[slot] & ~kOrderBits) != key) slot = (slot + 1) & mask;
  return slot;
}

bool KnownPages::Has(std::int64_t key, int order) const {
  if (slots_.empty() || order >= kMostOrder) return false;
  const std::uint64_t found = slots_[SlotOf(KeyBits(key))];
  return found != 0 && (found & kOrderBits) <= OrderBits(order);
}

void KnownPages::Add(std::int64_t key, int order) {
  if (used_ * 4 >= slots_.size() * 3) Grow();
  std::uint64_t& slot = slots_[SlotOf(KeyBits(key))];
  if (slot == 0) ++used_;
  slot = KeyBits(key) | OrderBits(order);
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
    if (entry != 0) slots_[SlotOf(entry & ~kOrderBits)] = entry;
  }
}

}  // namespace quenlar
