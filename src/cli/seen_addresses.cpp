#include "cli/seen_addresses.h"

#include <algorithm>
#include <random>

namespace quenlar {
namespace {

constexpr std::size_t kFirstSlots = 1024;

std::uint64_t Seed() {
  std::random_device source;
  return std::uint64_t{source()} << 32 | source();
}

// The slot of a key, or the free one where it belongs.
std::uint64_t& SlotOf(std::vector<std::uint64_t>& slots, std::uint64_t key) {
  std::size_t at = key & (slots.size() - 1);
  while (slots[at] != 0 && slots[at] != key) at = (at + 1) & (slots.size() - 1);
  return slots[at];
}

}  // namespace

SeenAddresses::SeenAddresses() : first_(Seed()), second_(Seed()), slots_(kFirstSlots) {}

bool SeenAddresses::Add(std::string_view address) {
  const std::uint64_t hash = std::uint64_t{first_.IgnoringCase(address)} << 32 | second_.IgnoringCase(address);
  const std::uint64_t key = std::max<std::uint64_t>(hash, 1);
  std::uint64_t& slot = SlotOf(slots_, key);
  if (slot == key) return false;
  slot = key;
  if (++used_ * 8 > slots_.size() * 7) Grow();
  return true;
}

void SeenAddresses::Grow() {
  std::vector<std::uint64_t> slots(slots_.size() * 2);
  for (const std::uint64_t key : slots_) {
    if (key != 0) SlotOf(slots, key) = key;
  }
  slots_ = std::move(slots);
}

}  // namespace quenlar
