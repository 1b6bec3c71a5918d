#include "engine/home.h"

#include <gtest/gtest.h>

#include "support/in_memory_files.h"

namespace quenlar {
namespace {

Installation At(const std::string& folder) {
  Installation installation;
  installation.program_folder = folder;
  return installation;
}

TEST(MakeFolders, MakesEveryMissingParent) {
  InMemoryFiles files;
  EXPECT_TRUE(MakeFolders(files, "/a/b/c", '/').ok());
  EXPECT_TRUE(files.FolderExists("/a/b/c"));
  EXPECT_TRUE(MakeFolders(files, "/a/b/c", '/').ok());
}

TEST(MakeFolders, FailsWhereAFileIsInTheWay) {
  InMemoryFiles files;
  files.Put("/a", "a file");
  EXPECT_FALSE(MakeFolders(files, "/a/b", '/').ok());
}

TEST(MakeFolders, TakesEitherSeparatorWhereTheSystemDoes) {
  InMemoryFiles files;
  files.AddFolder("c:");
  EXPECT_TRUE(MakeFolders(files, "c:/a\\b", '\\').ok());
  EXPECT_TRUE(files.FolderExists("c:/a/b"));
}

TEST(LockHome, RefusesASecondProgramAndNamesTheFolder) {
  InMemoryFiles files;
  files.AddFolder("/home");
  auto first = LockHome(files, At("/home"));
  ASSERT_TRUE(first.ok());
  const auto second = LockHome(files, At("/home"));
  ASSERT_FALSE(second.ok());
  EXPECT_EQ(second.status().kind(), StatusKind::kBusy);
  EXPECT_EQ(second.status().message(), "Another Quenlar is at work in /home");
}

TEST(LockHome, IsFreeAgainWhenTheFirstProgramHasEnded) {
  InMemoryFiles files;
  files.AddFolder("/home");
  { const auto first = LockHome(files, At("/home")); }
  EXPECT_TRUE(LockHome(files, At("/home")).ok());
}

TEST(LockHome, TellsAFolderThatCannotBeWrittenAsItIs) {
  InMemoryFiles files;
  files.AddFolder("/home");
  files.Protect("/home");
  const auto lock = LockHome(files, At("/home"));
  ASSERT_FALSE(lock.ok());
  EXPECT_EQ(lock.status().kind(), StatusKind::kDenied);
}

}  // namespace
}  // namespace quenlar
