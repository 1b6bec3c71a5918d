// Paths with ".." where a link may stand before it.
#include <gtest/gtest.h>

#include "cli/paths.h"

namespace quenlar {
namespace {

TEST(AbsolutePath, KeepsAFolderUpSinceALinkMayStandBeforeIt) {
  EXPECT_EQ(AbsolutePath("a/../b"), AbsolutePath(".") + "/a/../b");
}

}  // namespace
}  // namespace quenlar
