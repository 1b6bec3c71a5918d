// Memory for large tables that are read at random places. When the system backs it with pages of two megabytes, the
// processor finds the place of a read faster.
#pragma once

#include <cstddef>
#include <new>

namespace quenlar {

// The size of a large page in bytes. Smaller tables use ordinary memory.
inline constexpr std::size_t kLargePage = std::size_t{2} << 20;

// Asks the system for large pages for this memory, which must begin at a multiple of kLargePage. It is only a wish: the
// system may ignore it, and it cannot fail. Each platform room defines its own.
void WishForLargePages(void* memory, std::size_t bytes) noexcept;

// Says that all of this memory will be written soon, so that the system can provide all of its pages at once and not
// one by one at their first use. A wish, like the one above.
void WishForAllPages(void* memory, std::size_t bytes) noexcept;

// The allocator of containers that hold such tables. Throws std::bad_alloc.
template <typename T>
class LargeAllocator {
 public:
  using value_type = T;

  LargeAllocator() = default;
  template <typename U>
  LargeAllocator(const LargeAllocator<U>&) noexcept {}

  [[nodiscard]] T* allocate(std::size_t count) {
    void* const memory = ::operator new(count * sizeof(T), Alignment(count));
    if (IsLarge(count)) WishForLargePages(memory, count * sizeof(T));
    return static_cast<T*>(memory);
  }
  void deallocate(T* memory, std::size_t count) noexcept { ::operator delete(memory, Alignment(count)); }

  bool operator==(const LargeAllocator&) const = default;

 private:
  static bool IsLarge(std::size_t count) { return count >= kLargePage / sizeof(T); }
  static std::align_val_t Alignment(std::size_t count) {
    return std::align_val_t{IsLarge(count) ? kLargePage : alignof(T)};
  }
};

}  // namespace quenlar
