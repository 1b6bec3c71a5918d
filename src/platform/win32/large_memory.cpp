// Windows gives large pages to those only who may lock memory, which ordinary users may not.
#include "platform/large_memory.h"

namespace quenlar {

void WishForLargePages(void*, std::size_t) noexcept {}

void WishForAllPages(void*, std::size_t) noexcept {}

}  // namespace quenlar
