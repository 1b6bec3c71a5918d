// What Win32Files adds to the contract: temporary files of programs that were cut off, files that others hold.
#include <string>

#include <gmock/gmock.h>

#include "platform/win32/files.h"
#include "platform/win32/handle.h"
#include "platform/win32/wide.h"
#include "scratch_win32.h"

namespace quenlar {
namespace {

TEST(Win32FilesTest, TemporaryFilesOfAProgramThatIsGoneAreRemovedAndNoOthers) {
  const ScratchFolder folder;
  const auto make = [&](const std::string& name) {
    Win32Files files;
    auto file = files.Replace(folder.path() + "/" + name);
    ASSERT_TRUE(file.ok());
    ASSERT_TRUE(file.value()->Write("x").ok());
    ASSERT_TRUE(file.value()->Commit().ok());
  };
  const std::string own = "~quenlar-" + std::to_string(GetCurrentProcessId()) + "-1234567.tmp";
  for (const std::string& name : {own, std::string("~quenlar-.tmp"), std::string("~quenlar-4294967280-0.tmp")}) {
    make(name);
  }
  make("book.txt");
  EXPECT_THAT(NamesIn(folder.path()), testing::UnorderedElementsAre("book.txt", "~quenlar-.tmp", own));
}

// A file with old contents that another program holds without sharing it.
struct HeldFileTest : testing::Test {
  const ScratchFolder folder;
  const std::string path = folder.path() + "/book.txt";
  win32::Handle holder;

  HeldFileTest() {
    Win32Files files;
    EXPECT_TRUE(WriteWhole(files, path, "old").ok());
    holder = win32::Handle(
        CreateFileW(win32::NativePath(path).c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr));
    EXPECT_TRUE(holder.valid());
  }
  [[nodiscard]] std::string Contents() const { return ReadWhole(Win32Files(), path).value(); }
};

TEST_F(HeldFileTest, IsReplacedWhenItIsLetGoMeanwhile) {
  int pauses = 0;
  Win32Files files([&] {
    if (++pauses == 9) (void)holder.Close();
  });
  const Status saved = WriteWhole(files, path, "new");
  EXPECT_TRUE(saved.ok()) << saved.message();
  EXPECT_EQ(pauses, 9);
  EXPECT_EQ(Contents(), "new");
}

TEST_F(HeldFileTest, IsRenamedWhenItIsLetGoMeanwhile) {
  Win32Files files([&] { EXPECT_TRUE(holder.Close()); });
  const Status renamed = files.Rename(path, path + ".bak");
  EXPECT_TRUE(renamed.ok()) << renamed.message();
  EXPECT_THAT(NamesIn(folder.path()), testing::ElementsAre("book.txt.bak"));
}

TEST_F(HeldFileTest, StaysAsItIsWhenItIsHeldForGood) {
  Win32Files files;
  const Status saved = WriteWhole(files, path, "new");
  EXPECT_THAT(saved.kind(), testing::AnyOf(StatusKind::kDenied, StatusKind::kBusy));
  EXPECT_THAT(saved.message(), testing::StartsWith(path + ": "));
  EXPECT_TRUE(holder.Close());
  EXPECT_EQ(Contents(), "old");
  EXPECT_THAT(NamesIn(folder.path()), testing::ElementsAre("book.txt"));
}

TEST_F(HeldFileTest, IsNotWaitedForWhereItIsWriteProtected) {
  ASSERT_TRUE(SetFileAttributesW(win32::NativePath(path).c_str(), FILE_ATTRIBUTE_READONLY));
  int pauses = 0;
  Win32Files files([&] { ++pauses; });
  EXPECT_EQ(WriteWhole(files, path, "new").kind(), StatusKind::kDenied);
  EXPECT_EQ(pauses, 0);
  EXPECT_TRUE(holder.Close());
  EXPECT_EQ(Contents(), "old");
  ASSERT_TRUE(SetFileAttributesW(win32::NativePath(path).c_str(), FILE_ATTRIBUTE_NORMAL));
}

}  // namespace
}  // namespace quenlar
