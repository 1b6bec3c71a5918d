// A table of record numbers by hash: the index beside a list of records that are kept elsewhere.
#pragma once

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

#include "base/prefetch.h"
#include "platform/large_memory.h"

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace quenlar {

// The table knows hashes and numbers, not the records. The caller compares records: Find calls `equal(number)` for each
// number with the wanted hash. A number is below 2^32 - 1. Only all of them
// together can be taken out.
//
// A slot takes eight bytes: the number, and the hash beside it, so that growing does not have to read any record. Eight
// slots are a row, and a row is one line of the processor's cache. A number goes into the first free slot of its row,
// or of the next row that has a free one. At most four fifths of the slots are in use. A row is always compared as a
// whole, so no branch depends on how full it is.
class IndexTable {
 public:
  static constexpr std::uint32_t kNone = 0xFFFFFFFF;

  // Returns the first number with this hash for which `equal(number)` is true, or kNone.
  template <typename Equal>
  [[nodiscard]] std::uint32_t Find(std::uint32_t hash, Equal equal) const {
    if (rows_.empty()) return kNone;
    for (std::size_t at = hash & mask_;; at = (at + 1) & mask_) {
      const Row& row = rows_[at];
      for (unsigned hits = row.WithHash(hash); hits != 0; hits &= hits - 1) {
        const std::uint32_t number = row.number_plus_one[std::countr_zero(hits)] - 1;
        if (equal(number)) return number;
      }
      if (row.HasRoom()) return kNone;
    }
  }
  template <typename Equal>
  [[nodiscard]] bool Contains(std::uint32_t hash, Equal equal) const {
    return Find(hash, equal) != kNone;
  }

  // Asks the processor to load the row in which a search for this hash begins. Costs nothing when it is loaded already.
  void Prefetch(std::uint32_t hash) const {
    if (!rows_.empty()) quenlar::Prefetch(&rows_[hash & mask_]);
  }
  // Returns the first number with this hash in that row. The record may still differ, and the wanted one may stand in a
  // later row: it is a guess at which record to load.
  [[nodiscard]] std::optional<std::uint32_t> FirstGuess(std::uint32_t hash) const {
    if (rows_.empty()) return std::nullopt;
    const Row& row = rows_[hash & mask_];
    const unsigned hits = row.WithHash(hash);
    if (hits == 0) return std::nullopt;
    return row.number_plus_one[std::countr_zero(hits)] - 1;
  }

  // Puts a number in without a duplicate test. May throw std::bad_alloc; the table is then unchanged.
  void Insert(std::uint32_t hash, std::uint32_t number) {
    MakeRoom();
    Place(hash, number + 1);
    ++used_;
  }

  // Makes sure that the next Insert needs no memory. A caller that calls it before it adds a record adds the record and
  // its number together or not at all. May throw std::bad_alloc.
  void MakeRoom() {
    if ((used_ + 1) * 5 > rows_.size() * kRowSlots * 4) Grow();
  }

  // Takes everything out and keeps the memory.
  void Clear() {
    std::fill(rows_.begin(), rows_.end(), Row());
    used_ = 0;
  }

  [[nodiscard]] std::size_t MemoryBytes() const { return rows_.capacity() * sizeof(Row); }

 private:
  static constexpr std::size_t kFewestRows = 8;
  static constexpr std::size_t kRowSlots = 8;

  struct alignas(64) Row {
    std::uint32_t hash[kRowSlots] = {};
    std::uint32_t number_plus_one[kRowSlots] = {};  // 0: the slot, and all behind it, are free

    [[nodiscard]] bool HasRoom() const { return number_plus_one[kRowSlots - 1] == 0; }
    // Bit i: slot i is in use, and was put in with this hash.
    [[nodiscard]] unsigned WithHash(std::uint32_t wanted) const { return EqualTo(hash, wanted) & ~Free(); }
    // Bit i: slot i is free.
    [[nodiscard]] unsigned Free() const { return EqualTo(number_plus_one, 0); }

   private:
    static unsigned EqualTo(const std::uint32_t (&values)[kRowSlots], std::uint32_t wanted) {
#if defined(__SSE2__)
      const auto* four = reinterpret_cast<const __m128i*>(values);
      const __m128i equal = _mm_set1_epi32(static_cast<int>(wanted));
      const __m128i low = _mm_cmpeq_epi32(_mm_load_si128(four), equal);
      const __m128i high = _mm_cmpeq_epi32(_mm_load_si128(four + 1), equal);
      const __m128i sixteen_bits = _mm_packs_epi32(low, high);
      return static_cast<unsigned>(_mm_movemask_epi8(_mm_packs_epi16(sixteen_bits, _mm_setzero_si128())));
#else
      unsigned bits = 0;
      for (unsigned i = 0; i < kRowSlots; ++i) bits |= unsigned{values[i] == wanted} << i;
      return bits;
#endif
    }
  };

  using Rows = std::vector<Row, LargeAllocator<Row>>;

  void Place(std::uint32_t hash, std::uint32_t number_plus_one) {
    std::size_t at = hash & mask_;
    while (!rows_[at].HasRoom()) at = (at + 1) & mask_;
    Row& row = rows_[at];
    const auto slot = static_cast<std::size_t>(std::countr_zero(row.Free()));
    row.hash[slot] = hash;
    row.number_plus_one[slot] = number_plus_one;
  }

  void Grow() {
    Rows old(rows_.empty() ? kFewestRows : rows_.size() * 2);
    old.swap(rows_);
    mask_ = rows_.size() - 1;
    for (const Row& row : old) {
      for (std::size_t i = 0; i < kRowSlots && row.number_plus_one[i] != 0; ++i) {
        Place(row.hash[i], row.number_plus_one[i]);
      }
    }
  }

  Rows rows_;
  std::size_t mask_ = 0;
  std::size_t used_ = 0;
};

}  // namespace quenlar
