// The command lines by which Windows opens pages and files.
#include <utility>

#include <gtest/gtest.h>

#include "platform/win32/command_lines.h"

namespace quenlar::win32 {
namespace {

TEST(BrowserProgram, IsTheQuotedPathOrTheTextBeforeTheFirstHyphen) {
  const std::pair<const char*, const char*> rows[] = {
      {"\"C:\\Program Files\\B\\b.exe\" -osint -url \"%1\"", "C:\\Program Files\\B\\b.exe"},
      {"\" C:\\b.exe \" -x", "C:\\b.exe"},
      {"C:\\b.exe -nohome", "C:\\b.exe"},
      {"  C:\\b.exe  ", "C:\\b.exe"},
      {"C:\\my-browser\\b.exe -x", "C:\\my"},  // an unquoted path ends at its first hyphen
      {" \"C:\\b.exe\"", "\"C:\\b.exe\""},
      {"\"C:\\b.exe", "C:\\b.exe"},
      {"", ""},
      {"\"", ""},
      {"-x", ""},
  };
  for (const auto& [command, program] : rows) EXPECT_EQ(BrowserProgram(command), program) << command;
}

TEST(BrowserProgram, ALongPathStaysWhole) {
  const std::string path = "C:\\" + std::string(10'000, 'x') + ".exe";
  EXPECT_EQ(BrowserProgram("\"" + path + "\" -x"), path);
}

TEST(EditorCommandLine, HasThePathUnquotedEvenWithBlanks) {
  EXPECT_EQ(EditorCommandLine("C:\\Windows\\system32", "C:\\Quenlar\\report\\my cars.rpt"),
            "C:\\Windows\\system32\\notepad.exe C:\\Quenlar\\report\\my cars.rpt");
}

}  // namespace
}  // namespace quenlar::win32
