// Windows gives large pages only to users who may lock memory, and ordinary users may not. So these wishes do nothing.
#include "platform/large_memory.h"

namespace quenlar {

void WishForLargePages(void*, std::size_t) noexcept {}

void WishForAllPages(void*, std::size_t) noexcept {}

}  // namespace quenlar
