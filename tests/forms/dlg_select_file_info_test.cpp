#include "forms/dlg_select_file_info.h"

#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace quenlar {
namespace {

using namespace std::string_literals;

struct Case {
  std::string text, current, folder;
  std::vector<std::string> files;
};

TEST(GetDlgSelectFileInfo, SplitsOneFileAndSeveralFilesIntoFolderAndNames) {
  const Case kCases[] = {
      {"C:\\books\\a.txt", "C:\\books", "C:\\books\\", {"a.txt"}},
      {"C:\\a.txt", "C:\\", "C:\\", {"a.txt"}},
      {"C:\\books\0a.txt\0b.rpt"s, "C:\\books", "C:\\books\\", {"a.txt", "b.rpt"}},
      {"C:\\\0a.txt\0b.txt"s, "C:\\", "C:\\", {"a.txt", "b.txt"}},
      {"C:\\b\0one name.txt"s, "C:\\b", "C:\\b\\", {"one name.txt"}},
      {"C:\\b\0x\0\0y"s, "C:\\b", "C:\\b\\", {"x", "", "y"}},  // every NUL begins a name
      {"C:\\b\0x\0"s, "C:\\b", "C:\\b\\", {"x", ""}},
      {"C:\\b\\\\twice.txt", "C:\\b", "C:\\b\\", {"\\twice.txt"}},  // one leading backslash is dropped
      {"C:\\b\\x\0y"s, "C:\\b", "C:\\b\\", {"x\0y"s}},              // a NUL inside a single name separates nothing
      {"C:\\b", "C:\\b", "C:\\b\\", {""}},
      {"a.txt", "", "\\", {"a.txt"}},
  };
  for (const Case& c : kCases) {
    const auto info = GetDlgSelectFileInfo(c.text, c.current);
    ASSERT_TRUE(info) << c.text;
    EXPECT_EQ(info->Folder, c.folder) << c.text;
    EXPECT_EQ(info->Files, c.files) << c.text;
  }
}

TEST(GetDlgSelectFileInfo, FailsOnATextThatIsShorterThanTheFolder) {
  EXPECT_FALSE(GetDlgSelectFileInfo("C:\\", "C:\\books"));
  EXPECT_FALSE(GetDlgSelectFileInfo("", "C:\\"));
}

TEST(GetDlgSelectFileInfo, FailsBeyondASixteenBitCount) {
  std::string names = "C:\\b";
  for (int i = 0; i < 32767; ++i) names += "\0a"s;
  ASSERT_TRUE(GetDlgSelectFileInfo(names, "C:\\b"));
  EXPECT_EQ(GetDlgSelectFileInfo(names, "C:\\b")->Files.size(), 32767u);
  names += "\0a"s;
  EXPECT_FALSE(GetDlgSelectFileInfo(names, "C:\\b"));
}

}  // namespace
}  // namespace quenlar
