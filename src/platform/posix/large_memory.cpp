#include "platform/large_memory.h"

#include <cstdint>

#include <sys/mman.h>
#include <unistd.h>

namespace quenlar {

void WishForLargePages([[maybe_unused]] void* memory, [[maybe_unused]] std::size_t bytes) noexcept {
#ifdef MADV_HUGEPAGE
  madvise(memory, bytes, MADV_HUGEPAGE);
#endif
}

void WishForAllPages([[maybe_unused]] void* memory, [[maybe_unused]] std::size_t bytes) noexcept {
#ifdef MADV_POPULATE_WRITE
  const auto page = static_cast<std::uintptr_t>(sysconf(_SC_PAGESIZE));
  const auto begin = reinterpret_cast<std::uintptr_t>(memory);
  const std::uintptr_t first = (begin + page - 1) / page * page, behind = (begin + bytes) / page * page;
  if (first < behind) madvise(reinterpret_cast<void*>(first), behind - first, MADV_POPULATE_WRITE);
#endif
}

}  // namespace quenlar
