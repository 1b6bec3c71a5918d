// A table of record numbers by hash: the index beside a list of records that are kept elsewhere.
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

namespace quenlar {

// Eight bytes a slot, at most four fifths of the slots in use. Holds numbers below 2^32 - 1; nothing is ever taken
// out. The hash is kept beside the number, so that growing reads no record.
class IndexTable {
 public:
  static constexpr std::uint32_t kNone = 0xFFFFFFFF;

  // The first number put in with this hash that passes `equal`, or kNone.
  template <typename Equal>
  [[nodiscard]] std::uint32_t Find(std::uint32_t hash, Equal equal) const {
    if (slots_.empty()) return kNone;
    for (std::size_t at = hash & mask_;; at = (at + 1) & mask_) {
      const Slot& slot = slots_[at];
      if (slot.number_plus_one == 0) return kNone;
      if (slot.hash == hash && equal(slot.number_plus_one - 1)) return slot.number_plus_one - 1;
    }
  }
  template <typename Equal>
  [[nodiscard]] bool Contains(std::uint32_t hash, Equal equal) const {
    return Find(hash, equal) != kNone;
  }

  // Asks the processor to have the slot at hand soon in which a search for this hash begins.
  void Prefetch(std::uint32_t hash) const {
    if (!slots_.empty()) __builtin_prefetch(&slots_[hash & mask_]);
  }
  // The number in that slot, if it was put in with this hash.
  [[nodiscard]] std::optional<std::uint32_t> FirstGuess(std::uint32_t hash) const {
    if (slots_.empty()) return std::nullopt;
    const Slot& slot = slots_[hash & mask_];
    if (slot.number_plus_one == 0 || slot.hash != hash) return std::nullopt;
    return slot.number_plus_one - 1;
  }

  // Puts a number in without a test.
  void Insert(std::uint32_t hash, std::uint32_t number) {
    MakeRoom();
    Place({hash, number + 1});
    ++used_;
  }

  // The next Insert needs no memory, so a record and its number go in together or not at all.
  void MakeRoom() {
    if ((used_ + 1) * 5 > slots_.size() * 4) Grow();
  }

  [[nodiscard]] std::size_t MemoryBytes() const { return slots_.capacity() * sizeof(Slot); }

 private:
  static constexpr std::size_t kFewest = 64;
  struct Slot {
    std::uint32_t hash = 0;
    std::uint32_t number_plus_one = 0;  // 0: the slot is free
  };

  void Place(Slot filled) {
    std::size_t at = filled.hash & mask_;
    while (slots_[at].number_plus_one != 0) at = (at + 1) & mask_;
    slots_[at] = filled;
  }

  void Grow() {
    std::vector<Slot> old(slots_.empty() ? kFewest : slots_.size() * 2);
    old.swap(slots_);
    mask_ = slots_.size() - 1;
    for (const Slot& slot : old) {
      if (slot.number_plus_one != 0) Place(slot);
    }
  }

  std::vector<Slot> slots_;
  std::size_t mask_ = 0;
  std::size_t used_ = 0;
};

}  // namespace quenlar
