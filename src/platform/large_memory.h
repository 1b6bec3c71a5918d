// Memory for large tables that are read at random places. Where the system gives pages of megabytes for it, fewer of
// those reads wait for the system's own tables.
#pragma once

#include <cstddef>
#include <new>

namespace quenlar {

// The size of a large page; below it ordinary ones do as well.
inline constexpr std::size_t kLargePage = std::size_t{2} << 20;

// Tells the system that large pages are welcome for this memory, which begins at a multiple of kLargePage. A wish:
// nothing is promised and nothing can fail. Each platform has its own.
void WishForLargePages(void* memory, std::size_t bytes) noexcept;

// Tells the system that all of this memory will soon be written, so that it can give its pages at once instead of one
// by one as each is first touched. A wish, like the one above.
void WishForAllPages(void* memory, std::size_t bytes) noexcept;

// For containers. Throws std::bad_alloc.
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
