#include "base/large_memory.h"

#include <sys/mman.h>

namespace quenlar {

void WishForLargePages([[maybe_unused]] void* memory, [[maybe_unused]] std::size_t bytes) noexcept {
#ifdef MADV_HUGEPAGE
  madvise(memory, bytes, MADV_HUGEPAGE);
#endif
}

}  // namespace quenlar
