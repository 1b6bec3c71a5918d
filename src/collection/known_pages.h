// Remembers which pages a collection holds, so that most links of a page cost no look-up in the file.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace quenlar {

// Keys of pages with the best place in the order of visits at which each is known. Bounded: when it is full it forgets
// everything and begins again, since the file knows the rest. Two pages whose keys share 56 bits would be taken for
// one; keys are seeded, so nobody can make such pages on purpose, and ten million pages meet by chance once in a
// thousand collections.
class KnownPages {
 public:
  // Where a page stands in the order of visits: clicks from a start first, then its rank, 0 to 2.
  [[nodiscard]] static int Order(int depth, int rank) { return depth < kMostDepth ? depth * 3 + rank : kMostOrder; }
  // True when the page is known at this order or before it. Pages too deep to be told apart are never known.
  [[nodiscard]] bool Has(std::int64_t key, int order) const;
  void Add(std::int64_t key, int order);
  void Clear();

 private:
  static constexpr int kMostOrder = 254, kMostDepth = kMostOrder / 3;
  static constexpr std::size_t kFirstSlots = std::size_t{1} << 12;
  static constexpr std::size_t kMostSlots = std::size_t{1} << 22;  // 32 MiB

  [[nodiscard]] std::size_t SlotOf(std::uint64_t key) const;
  void Grow();

  std::vector<std::uint64_t> slots_;  // the key's upper 56 bits and the order plus one; 0: free
  std::size_t used_ = 0;
};

}  // namespace quenlar
