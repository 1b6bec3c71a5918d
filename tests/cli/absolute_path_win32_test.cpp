// Paths with ".." where the system itself takes it for the folder above the one named before it, links or not.
#include <gtest/gtest.h>

#include "cli/paths.h"

namespace quenlar {
namespace {

TEST(AbsolutePath, ResolvesAFolderUpAsTheSystemDoes) {
  EXPECT_EQ(AbsolutePath("a\\..\\b"), AbsolutePath("b"));
  EXPECT_EQ(AbsolutePath("a/../b"), AbsolutePath("b"));
}

TEST(AbsolutePath, KeepsADriveAndAShare) {
  EXPECT_EQ(AbsolutePath("C:\\"), "C:\\");
  EXPECT_EQ(AbsolutePath("C:/a/"), "C:\\a");
  EXPECT_EQ(AbsolutePath("\\\\server\\share\\a"), "\\\\server\\share\\a");
  EXPECT_EQ(AbsolutePath("//server/share/a/"), "\\\\server\\share\\a");
}

}  // namespace
}  // namespace quenlar
