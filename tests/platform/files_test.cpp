// The contract of Files.
#include "platform/files.h"

#include <string>
#include <vector>

#include "platform_under_test.h"

namespace quenlar {
namespace {

class FilesContract : public PlatformContract {
 protected:
  // Everything in the file; the kind of the failure in brackets when it cannot be read.
  std::string Contents(const std::string& path) {
    const auto whole = ReadWhole(files_, path);
    return whole.ok() ? whole.value() : "<" + std::to_string(static_cast<int>(whole.status().kind())) + ">";
  }
  std::string At(const std::string& name) { return folder_ + "/" + name; }

  Files& files_ = platform_->files();
  const std::string folder_ = platform_->Folder();
  using Names = std::vector<std::string>;
};
INSTANTIATE_TEST_SUITE_P(Platforms, FilesContract, testing::Values(MakeTestPlatform, MakeFakeTestPlatform),
                         PlatformName);

TEST_P(FilesContract, WhatIsWrittenIsReadBackByteForByte) {
  std::string bytes;
  for (int i = 0; i < 200'000; ++i) bytes += static_cast<char>(i * 7 + i / 256);
  ASSERT_TRUE(WriteWhole(files_, At("a.dat"), bytes).ok());
  EXPECT_TRUE(Contents(At("a.dat")) == bytes);
  EXPECT_EQ(platform_->Names(folder_), Names{"a.dat"});
}

TEST_P(FilesContract, AnEmptyFileIsAFile) {
  ASSERT_TRUE(WriteWhole(files_, At("empty"), "").ok());
  EXPECT_TRUE(files_.FileExists(At("empty")));
  EXPECT_EQ(Contents(At("empty")), "");
}

TEST_P(FilesContract, LineEndsAreNotTranslated) {
  ASSERT_TRUE(WriteWhole(files_, At("a"),
                         "1\r\n2\n3\x1a"
                         "4")
                  .ok());
  EXPECT_EQ(Contents(At("a")),
            "1\r\n2\n3\x1a"
            "4");
}

TEST_P(FilesContract, NamesMayHoldBlanksAndCharactersBeyondAscii) {
  const std::string name = "m\xC3\xBCller & s\xC3\xB6hne \xE6\x97\xA5\xE6\x9C\xAC.dat";
  ASSERT_TRUE(WriteWhole(files_, At(name), "x").ok());
  EXPECT_TRUE(files_.FileExists(At(name)));
  EXPECT_EQ(platform_->Names(folder_), Names{name});
}

TEST_P(FilesContract, FoldersMayLieDeeperThanOldSystemCallsReach) {
  std::string folder = folder_;
  while (folder.size() < 400) {
    folder += "/" + std::string(60, 'd');
    ASSERT_TRUE(files_.MakeFolder(folder).ok()) << folder.size();
  }
  const std::string file = folder + "/a.dat";
  for (const char* contents : {"old", "new"}) {
    ASSERT_TRUE(WriteWhole(files_, file, contents).ok());
    EXPECT_EQ(Contents(file), contents);
  }
  EXPECT_TRUE(files_.FolderExists(folder));
  EXPECT_TRUE(files_.Lock(folder, "lock").ok());
  ASSERT_TRUE(files_.Rename(file, file + ".bak").ok());
  EXPECT_TRUE(files_.FileExists(file + ".bak"));
  EXPECT_TRUE(files_.Delete(file + ".bak").ok());
  EXPECT_FALSE(files_.FileExists(file + ".bak"));
}

TEST_P(FilesContract, ManySmallWritesMakeOneFile) {
  auto replacement = files_.Replace(At("a"));
  ASSERT_TRUE(replacement.ok());
  std::string expected;
  for (int i = 0; i < 20'000; ++i) {
    const std::string line = std::to_string(i) + "\r\n";
    expected += line;
    ASSERT_TRUE(replacement.value()->Write(line).ok());
  }
  ASSERT_TRUE(replacement.value()->Commit().ok());
  EXPECT_TRUE(Contents(At("a")) == expected);
}

TEST_P(FilesContract, ReadersSeeTheOldFileUntilTheCommit) {
  ASSERT_TRUE(WriteWhole(files_, At("a"), "old").ok());
  auto replacement = files_.Replace(At("a"));
  ASSERT_TRUE(replacement.ok());
  ASSERT_TRUE(replacement.value()->Write(std::string(100'000, 'n')).ok());
  EXPECT_EQ(Contents(At("a")), "old");
  ASSERT_TRUE(replacement.value()->Commit().ok());
  EXPECT_TRUE(Contents(At("a")) == std::string(100'000, 'n'));
}

TEST_P(FilesContract, AReplacementWithoutACommitLeavesNoTrace) {
  ASSERT_TRUE(WriteWhole(files_, At("a"), "old").ok());
  {
    auto of_old = files_.Replace(At("a"));
    auto of_none = files_.Replace(At("b"));
    ASSERT_TRUE(of_old.ok() && of_none.ok());
    ASSERT_TRUE(of_old.value()->Write("new").ok());
    ASSERT_TRUE(of_none.value()->Write("new").ok());
  }
  EXPECT_EQ(Contents(At("a")), "old");
  EXPECT_EQ(platform_->Names(folder_), Names{"a"});
}

TEST_P(FilesContract, TwoReplacementsOfOneFileDoNotMix) {
  auto first = files_.Replace(At("a"));
  auto second = files_.Replace(At("a"));
  ASSERT_TRUE(first.ok() && second.ok());
  ASSERT_TRUE(first.value()->Write("first").ok());
  ASSERT_TRUE(second.value()->Write("second").ok());
  ASSERT_TRUE(second.value()->Commit().ok());
  EXPECT_EQ(Contents(At("a")), "second");
  ASSERT_TRUE(first.value()->Commit().ok());
  EXPECT_EQ(Contents(At("a")), "first");
}

TEST_P(FilesContract, DestroyingACommittedReplacementKeepsTheFile) {
  {
    auto replacement = files_.Replace(At("a"));
    ASSERT_TRUE(replacement.ok());
    ASSERT_TRUE(replacement.value()->Write("new").ok());
    ASSERT_TRUE(replacement.value()->Commit().ok());
  }
  EXPECT_EQ(Contents(At("a")), "new");
}

TEST_P(FilesContract, AFolderIsNeitherReadNorReplacedNorDeletedAsAFile) {
  ASSERT_TRUE(files_.MakeFolder(At("sub")).ok());
  EXPECT_FALSE(files_.FileExists(At("sub")));
  const Status read = ReadWhole(files_, At("sub")).status();
  EXPECT_FALSE(read.ok());
  EXPECT_NE(read.kind(), StatusKind::kNotFound);
  EXPECT_FALSE(WriteWhole(files_, At("sub"), "x").ok());
  EXPECT_FALSE(files_.Delete(At("sub")).ok());
  EXPECT_TRUE(files_.FolderExists(At("sub")));
}

TEST_P(FilesContract, WhatIsNotThereIsNotFound) {
  EXPECT_FALSE(files_.FileExists(At("a")));
  EXPECT_FALSE(files_.FolderExists(At("a")));
  EXPECT_EQ(ReadWhole(files_, At("a")).status().kind(), StatusKind::kNotFound);
  EXPECT_EQ(files_.Delete(At("a")).kind(), StatusKind::kNotFound);
  EXPECT_EQ(files_.Rename(At("a"), At("b")).kind(), StatusKind::kNotFound);
  EXPECT_EQ(WriteWhole(files_, At("no/a"), "x").kind(), StatusKind::kNotFound);
  EXPECT_FALSE(files_.MakeFolder(At("no/sub")).ok());
  EXPECT_FALSE(files_.Lock(At("no"), "lock").ok());
}

TEST_P(FilesContract, NamesAreThoseOfFilesAndFoldersInOrder) {
  ASSERT_TRUE(files_.MakeFolder(At("sub")).ok());
  ASSERT_TRUE(WriteWhole(files_, At("b"), "x").ok());
  ASSERT_TRUE(WriteWhole(files_, At("\xC3\xA4"), "x").ok());
  ASSERT_TRUE(WriteWhole(files_, At("sub/inside"), "x").ok());
  const auto names = files_.Names(At(""));
  ASSERT_TRUE(names.ok()) << names.status().message();
  EXPECT_EQ(names.value(), (std::vector<std::string>{"b", "sub", "\xC3\xA4"}));
  EXPECT_EQ(files_.Names(At("sub")).value(), (std::vector<std::string>{"inside"}));
  EXPECT_EQ(files_.Names(At("none")).status().kind(), StatusKind::kNotFound);
}

TEST_P(FilesContract, AFileInTheWayIsNoFolder) {
  ASSERT_TRUE(WriteWhole(files_, At("a"), "x").ok());
  EXPECT_FALSE(files_.FolderExists(At("a")));
  EXPECT_FALSE(files_.MakeFolder(At("a")).ok());
  EXPECT_FALSE(WriteWhole(files_, At("a/b"), "x").ok());
  EXPECT_EQ(Contents(At("a")), "x");
}

TEST_P(FilesContract, MakingAFolderThatExistsIsASuccess) {
  EXPECT_TRUE(files_.MakeFolder(At("sub")).ok());
  EXPECT_TRUE(files_.FolderExists(At("sub")));
  ASSERT_TRUE(WriteWhole(files_, At("sub/a"), "x").ok());
  EXPECT_TRUE(files_.MakeFolder(At("sub")).ok());
  EXPECT_EQ(Contents(At("sub/a")), "x");
}

TEST_P(FilesContract, ReadingStopsWhenTheReaderHasEnough) {
  ASSERT_TRUE(WriteWhole(files_, At("a"), std::string(1'000'000, 'x')).ok());
  std::size_t bytes = 0;
  int blocks = 0;
  const Status read = files_.Read(At("a"), [&](std::string_view block) {
    EXPECT_FALSE(block.empty());
    bytes += block.size();
    return ++blocks < 2;
  });
  EXPECT_TRUE(read.ok());
  EXPECT_EQ(blocks, 2);
  EXPECT_LT(bytes, 1'000'000u);
}

TEST_P(FilesContract, AFileThatIsLongerThanAllowedIsNotReadWhole) {
  ASSERT_TRUE(WriteWhole(files_, At("a"), std::string(1000, 'x')).ok());
  EXPECT_TRUE(ReadWhole(files_, At("a"), 1000).ok());
  EXPECT_EQ(ReadWhole(files_, At("a"), 999).status().kind(), StatusKind::kLimit);
}

TEST_P(FilesContract, AnOpenFileIsReadAtAnyPlace) {
  ASSERT_TRUE(WriteWhole(files_, At("a"), "0123456789").ok());
  auto file = files_.Open(At("a"));
  ASSERT_TRUE(file.ok());
  EXPECT_EQ(file.value()->size(), 10u);
  EXPECT_GT(file.value()->modified(), 1'600'000'000);
  EXPECT_GE(file.value()->modified_nanoseconds(), 0);
  EXPECT_LT(file.value()->modified_nanoseconds(), 1'000'000'000);
  const auto read = [&](std::uint64_t offset, std::size_t size) {
    std::string text(size, '-');
    const auto got = file.value()->ReadAt(offset, text.data(), size);
    return got.ok() ? text.substr(0, got.value()) : "failed";
  };
  EXPECT_EQ(read(7, 2), "78");
  EXPECT_EQ(read(0, 20), "0123456789");
  EXPECT_EQ(read(8, 20), "89");
  EXPECT_EQ(read(10, 1), "");
  EXPECT_EQ(read(5'000'000'000, 1), "");
}

TEST_P(FilesContract, WhatIsOpenedIsAFile) {
  EXPECT_EQ(files_.Open(At("missing")).status().kind(), StatusKind::kNotFound);
  EXPECT_FALSE(files_.Open(folder_).ok());
}

TEST_P(FilesContract, KindsAreToldApart) {
  ASSERT_TRUE(WriteWhole(files_, At("a"), "").ok());
  EXPECT_EQ(files_.KindOf(At("a")), PathKind::kFile);
  EXPECT_EQ(files_.KindOf(folder_), PathKind::kFolder);
  EXPECT_EQ(files_.KindOf(At("missing")), PathKind::kNothing);
}

TEST_P(FilesContract, DeletedFilesAreGone) {
  ASSERT_TRUE(WriteWhole(files_, At("a"), "x").ok());
  EXPECT_TRUE(files_.Delete(At("a")).ok());
  EXPECT_FALSE(files_.FileExists(At("a")));
}

TEST_P(FilesContract, ARenamedFileReplacesTheOneInItsPlace) {
  ASSERT_TRUE(WriteWhole(files_, At("a"), "a").ok());
  ASSERT_TRUE(WriteWhole(files_, At("b"), "b").ok());
  ASSERT_TRUE(files_.Rename(At("a"), At("b")).ok());
  EXPECT_EQ(Contents(At("b")), "a");
  EXPECT_EQ(platform_->Names(folder_), Names{"b"});
}

TEST_P(FilesContract, AFileIsNotRenamedOverAFolder) {
  ASSERT_TRUE(WriteWhole(files_, At("a"), "a").ok());
  ASSERT_TRUE(files_.MakeFolder(At("sub")).ok());
  EXPECT_FALSE(files_.Rename(At("a"), At("sub")).ok());
  EXPECT_EQ(Contents(At("a")), "a");
}

TEST_P(FilesContract, ALockedFolderIsRefusedToEverybodyElse) {
  const auto other = platform_->OtherFiles();
  auto lock = files_.Lock(folder_, "lock");
  ASSERT_TRUE(lock.ok()) << lock.status().message();
  EXPECT_EQ(files_.Lock(folder_, "lock").status().kind(), StatusKind::kBusy);
  EXPECT_EQ(other->Lock(folder_, "lock").status().kind(), StatusKind::kBusy);
  lock.value().reset();
  EXPECT_TRUE(other->Lock(folder_, "lock").ok());
}

TEST_P(FilesContract, TwoFoldersAreLockedApart) {
  ASSERT_TRUE(files_.MakeFolder(At("1")).ok() && files_.MakeFolder(At("2")).ok());
  const auto first = files_.Lock(At("1"), "lock");
  const auto second = files_.Lock(At("2"), "lock");
  EXPECT_TRUE(first.ok() && second.ok());
}

TEST_P(FilesContract, AFileGrowsWhileOthersReadIt) {
  auto file = files_.Create(At("a"));
  ASSERT_TRUE(file.ok()) << file.status().message();
  EXPECT_EQ(Contents(At("a")), "");
  ASSERT_TRUE(file.value()->Append("one\r\n").ok());
  EXPECT_EQ(Contents(At("a")), "one\r\n");
  ASSERT_TRUE(file.value()->Append(std::string(100'000, 'x')).ok());
  ASSERT_TRUE(file.value()->Append("").ok());
  EXPECT_TRUE(file.value()->Flush().ok());
  EXPECT_EQ(Contents(At("a")), "one\r\n" + std::string(100'000, 'x'));
  file.value().reset();
  EXPECT_EQ(platform_->Names(folder_), Names{"a"});
}

TEST_P(FilesContract, OnlyANewFileIsCreated) {
  ASSERT_TRUE(WriteWhole(files_, At("a"), "old").ok());
  ASSERT_TRUE(files_.MakeFolder(At("sub")).ok());
  EXPECT_EQ(files_.Create(At("a")).status().kind(), StatusKind::kBusy);
  EXPECT_EQ(files_.Create(At("sub")).status().kind(), StatusKind::kBusy);
  EXPECT_EQ(files_.Create(At("missing/a")).status().kind(), StatusKind::kNotFound);
  EXPECT_EQ(Contents(At("a")), "old");
}

TEST_P(FilesContract, AFailureNamesThePath) {
  const Status missing = ReadWhole(files_, At("a.dat")).status();
  EXPECT_NE(missing.message().find("a.dat"), std::string::npos) << missing.message();
}

}  // namespace
}  // namespace quenlar
