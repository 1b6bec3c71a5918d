// What Win32Files adds to the contract: temporary files of programs that were cut off.
#include <string>

#include <gmock/gmock.h>

#include "platform/win32/files.h"
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

}  // namespace
}  // namespace quenlar
