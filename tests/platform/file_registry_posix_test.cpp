// What FileRegistry adds to the contract: its file, and whatever else may stand in it.
#include <string>

#include <gtest/gtest.h>

#include "platform/posix/file_registry.h"
#include "platform/posix/files.h"
#include "platform/posix/registry_text.h"
#include "posix_folder.h"
#include "support/fake_event_loop.h"
#include "support/in_memory_files.h"

namespace quenlar {
namespace {

const std::string kKey = "Software\\Quenlar\\Project";
const std::string kPath = "/config/quenlar/settings.ini";

class FileRegistryTest : public testing::Test {
 protected:
  FakeEventLoop loop_;
  InMemoryFiles files_;
};

TEST_F(FileRegistryTest, ReadsAFileThatPeopleHaveWritten) {
  files_.Put(kPath,
             "\xEF\xBB\xBF# a comment\r\n\r\n [software\\quenlar\\project] \r\n  StopNumber = 70000 \r\n"
             "; Search=1\r\nProject1=50%25 off 100%\r\n");
  FileRegistry registry(files_, loop_, kPath);
  EXPECT_EQ(registry.GetRegValue(kKey, "StopNumber"), "70000");
  EXPECT_EQ(registry.GetRegValue(kKey, "Project1"), "50% off 100%");
}

TEST_F(FileRegistryTest, WritesAFileThatPeopleCanRead) {
  {
    FileRegistry registry(files_, loop_, kPath);
    registry.SaveRegValue(kKey, "StopNumber", "99999");
    registry.SaveRegValue(kKey, "Project1", "picture search");
  }
  const std::string text = *files_.Contents(kPath);
  EXPECT_NE(text.find("\n[Software\\Quenlar\\Project]\nProject1=picture search\nStopNumber=99999\n"), text.npos)
      << text;
}

TEST_F(FileRegistryTest, AFileThatCannotBeReadAtFirstIsNoFirstStartAndIsKeptAside) {
  const std::string old = "[Software\\Quenlar\\Project]\nProjectNum=1\nProject1=www.a.test\n";
  files_.Put(kPath, old);
  files_.FailCall(1, StatusKind::kDenied);
  {
    FileRegistry registry(files_, loop_, kPath);
    EXPECT_TRUE(registry.KeyExists(kKey));
    EXPECT_EQ(registry.GetRegValue(kKey, "Project1"), "");
    registry.DeleteRegKey(kKey);
    registry.SaveRegValue(kKey, "Project1", "www.b.test");
  }
  EXPECT_EQ(files_.Contents(kPath + ".bak").value_or("(none)"), old);
  EXPECT_EQ(FileRegistry(files_, loop_, kPath).GetRegValue(kKey, "Project1"), "www.b.test");
}

TEST_F(FileRegistryTest, ChangesHoldAtOnceAndAreInTheFileAfterThePump) {
  FileRegistry registry(files_, loop_, kPath);
  registry.SaveRegValue(kKey, "Save", "1");
  EXPECT_EQ(registry.GetRegValue(kKey, "Save"), "1");
  EXPECT_FALSE(files_.FileExists(kPath));
  loop_.Yield();
  EXPECT_TRUE(files_.FileExists(kPath));
}

TEST_F(FileRegistryTest, AKeyThatIsDeletedAndWrittenAnewIsNeverSeenHalfDone) {
  FileRegistry registry(files_, loop_, kPath);
  registry.SaveRegValue(kKey, "Project1", "old");
  loop_.Yield();
  registry.DeleteRegKey(kKey);
  for (int i = 1; i <= 10; ++i) registry.SaveRegValue(kKey, "Project" + std::to_string(i), "new");
  EXPECT_EQ(FileRegistry(files_, loop_, kPath).GetRegValue(kKey, "Project1"), "old");
  loop_.Yield();
  EXPECT_EQ(FileRegistry(files_, loop_, kPath).GetRegValue(kKey, "Project10"), "new");
}

TEST_F(FileRegistryTest, ADestroyedRegistryWritesWhatIsLeftAndNothingLater) {
  {
    FileRegistry registry(files_, loop_, kPath);
    registry.SaveRegValue(kKey, "Save", "1");
  }
  EXPECT_EQ(FileRegistry(files_, loop_, kPath).GetRegValue(kKey, "Save"), "1");
  const int calls = files_.calls();
  loop_.Yield();
  EXPECT_EQ(files_.calls(), calls);
}

TEST_F(FileRegistryTest, TwoProgramsDoNotLoseEachOthersValues) {
  FileRegistry one(files_, loop_, kPath), two(files_, loop_, kPath);
  one.SaveRegValue(kKey, "Search", "1");
  loop_.Yield();
  two.SaveRegValue(kKey, "Save", "2");
  loop_.Yield();
  const FileRegistry next(files_, loop_, kPath);
  EXPECT_EQ(next.GetRegValue(kKey, "Search"), "1");
  EXPECT_EQ(next.GetRegValue(kKey, "Save"), "2");
}

TEST_F(FileRegistryTest, ADamagedFileIsReadAsFarAsItGoesAndKeptAside) {
  const std::string damaged = "Stray=1\n\x01\xFF garbage\n[" + kKey + "]\nno value here\nSearch=3\n[unclosed\nSave=1\n";
  files_.Put(kPath, damaged);
  FileRegistry registry(files_, loop_, kPath);
  EXPECT_EQ(registry.GetRegValue(kKey, "Search"), "3");
  EXPECT_EQ(registry.GetRegValue(kKey, "Save"), "1");
  registry.SaveRegValue(kKey, "Save", "2");
  loop_.Yield();
  EXPECT_EQ(files_.Contents(kPath + ".bak"), damaged);
  EXPECT_EQ(FileRegistry(files_, loop_, kPath).GetRegValue(kKey, "Search"), "3");
}

TEST_F(FileRegistryTest, AWriteThatFailsIsSilentAndTriedAgainWithTheNext) {
  FileRegistry registry(files_, loop_, kPath);
  files_.SetFreeSpace(0);
  registry.SaveRegValue(kKey, "Search", "1");
  loop_.Yield();
  EXPECT_FALSE(files_.FileExists(kPath));
  EXPECT_EQ(registry.GetRegValue(kKey, "Search"), "1");
  files_.SetFreeSpace(std::nullopt);
  registry.SaveRegValue(kKey, "Save", "2");
  loop_.Yield();
  const FileRegistry next(files_, loop_, kPath);
  EXPECT_EQ(next.GetRegValue(kKey, "Search"), "1");
  EXPECT_EQ(next.GetRegValue(kKey, "Save"), "2");
}

TEST_F(FileRegistryTest, WhicheverCallFailsTheOldFileIsWhole) {
  for (int n = 1;; ++n) {
    InMemoryFiles files;
    files.Put(kPath, "stray line\n[" + kKey + "]\nSearch=1\n");
    FileRegistry registry(files, loop_, kPath);
    files.FailCall(n);
    registry.SaveRegValue(kKey, "Search", "2");
    loop_.Yield();
    const bool failed = files.calls() >= n;
    files.FailCall(0);
    const std::string stored = FileRegistry(files, loop_, kPath).GetRegValue(kKey, "Search");
    EXPECT_TRUE(stored == "1" || stored == "2") << n;
    if (!failed) break;
  }
}

TEST_F(FileRegistryTest, AFileThatCannotBeReadIsNotReplaced) {
  files_.AddFolder(kPath);
  FileRegistry registry(files_, loop_, kPath);
  registry.SaveRegValue(kKey, "Search", "1");
  loop_.Yield();
  EXPECT_TRUE(files_.FolderExists(kPath));
}

TEST_F(FileRegistryTest, AFlushSaysWhatBecameOfTheChanges) {
  FileRegistry registry(files_, loop_, kPath);
  EXPECT_TRUE(registry.Flush().ok());
  EXPECT_FALSE(files_.FileExists(kPath));
  files_.SetFreeSpace(0);
  registry.SaveRegValue(kKey, "Search", "1");
  EXPECT_EQ(registry.Flush().kind(), StatusKind::kFull);
  loop_.Yield();
  EXPECT_EQ(registry.Flush().kind(), StatusKind::kFull);
  files_.SetFreeSpace(std::nullopt);
  EXPECT_TRUE(registry.Flush().ok());
  EXPECT_EQ(FileRegistry(files_, loop_, kPath).GetRegValue(kKey, "Search"), "1");
}

TEST_F(FileRegistryTest, AFlushOfAnUnreadFileFailsUntilItHasBeenReplaced) {
  files_.Put(kPath, "[Software\\Quenlar\\Project]\nSearch=1\n");
  files_.FailCall(1, StatusKind::kDenied);
  FileRegistry registry(files_, loop_, kPath);
  EXPECT_EQ(registry.Flush().kind(), StatusKind::kDenied);
  registry.SaveRegValue(kKey, "Search", "2");
  EXPECT_TRUE(registry.Flush().ok());
  EXPECT_TRUE(registry.Flush().ok());
}

TEST_F(FileRegistryTest, OnTheDiskAFolderInTheFilesPlaceFailsAFlush) {
  const PosixFolder folder;
  const std::string path = folder.path() + "/quenlar.conf";
  std::filesystem::create_directory(path);
  PosixFiles files;
  FileRegistry registry(files, loop_, path);
  EXPECT_NE(registry.Flush().message().find(path), std::string::npos);
  registry.SaveRegValue(kKey, "Search", "1");
  EXPECT_NE(registry.Flush().message().find(path), std::string::npos);
  std::filesystem::remove(path);
  EXPECT_TRUE(registry.Flush().ok());
  EXPECT_EQ(FileRegistry(files, loop_, path).GetRegValue(kKey, "Search"), "1");
}

TEST(RegistryText, EveryTextComesBack) {
  std::string all;
  for (int c = 0; c < 256; ++c) all += static_cast<char>(c);
  RegistryContents contents;
  for (const std::string& text : {all, std::string(" a "), std::string("%41"), std::string("#x=[y]"), std::string()}) {
    contents.Save("Key" + text, "Name" + text, text);
    contents.Save("Key", text, text);
  }
  const auto parsed = RegistryContents::Parse(contents.Format());
  EXPECT_FALSE(parsed.damaged);
  EXPECT_EQ(parsed.contents.Format(), contents.Format());
  for (const std::string& text : {all, std::string(" a "), std::string("%41"), std::string("#x=[y]"), std::string()}) {
    ASSERT_NE(parsed.contents.Find("Key" + text, "Name" + text), nullptr);
    EXPECT_EQ(*parsed.contents.Find("Key" + text, "Name" + text), text);
    ASSERT_NE(parsed.contents.Find("Key", text), nullptr);
    EXPECT_EQ(*parsed.contents.Find("Key", text), text);
  }
}

TEST(RegistryText, AnyBytesAreParsed) {
  for (const char* text :
       {"", "[", "]", "[]", "=", "[]\n=", "%", "[a]\nb=%", "[a]\nb=%4", "[a]\nb=%4z", "\r", "\n\n"}) {
    const auto parsed = RegistryContents::Parse(text);
    EXPECT_EQ(RegistryContents::Parse(parsed.contents.Format()).contents.Format(), parsed.contents.Format()) << text;
  }
}

}  // namespace
}  // namespace quenlar
