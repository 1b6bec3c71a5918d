// What PosixFiles adds to the contract: permissions, links, leftovers, a medium that is full.
#include <csignal>
#include <filesystem>
#include <fstream>

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include "platform/posix/files.h"
#include "posix_folder.h"

namespace quenlar {
namespace {

class PosixFilesTest : public testing::Test {
 protected:
  std::string At(const std::string& name) { return folder_.path() + "/" + name; }
  std::string Contents(const std::string& name) {
    const auto whole = ReadWhole(files_, At(name));
    return whole.ok() ? whole.value() : "<none>";
  }
  mode_t Mode(const std::string& name) {
    struct stat about {};
    return stat(At(name).c_str(), &about) == 0 ? about.st_mode & 07777 : 0;
  }

  PosixFolder folder_;
  PosixFiles files_;
};

TEST_F(PosixFilesTest, AReplacedFileKeepsItsPermissions) {
  for (const mode_t mode : {0600, 0644, 0664, 0755}) {
    ASSERT_TRUE(WriteWhole(files_, At("a"), "1").ok());
    ASSERT_EQ(chmod(At("a").c_str(), mode), 0);
    ASSERT_TRUE(WriteWhole(files_, At("a"), "2").ok());
    EXPECT_EQ(Mode("a"), mode);
  }
}

TEST_F(PosixFilesTest, ANewFileHasThePermissionsThatTheUserGivesNewFiles) {
  const mode_t before = umask(077);
  ASSERT_TRUE(WriteWhole(files_, At("private"), "").ok());
  umask(022);
  ASSERT_TRUE(WriteWhole(files_, At("public"), "").ok());
  umask(before);
  EXPECT_EQ(Mode("private"), 0600u);
  EXPECT_EQ(Mode("public"), 0644u);
}

TEST_F(PosixFilesTest, WhatALinkPointsToIsReplacedAndTheLinkStays) {
  ASSERT_TRUE(files_.MakeFolder(At("far")).ok());
  ASSERT_TRUE(WriteWhole(files_, At("far/target"), "old").ok());
  ASSERT_EQ(symlink("far/target", At("link").c_str()), 0);
  ASSERT_EQ(symlink(At("link").c_str(), At("link to link").c_str()), 0);
  ASSERT_TRUE(WriteWhole(files_, At("link to link"), "new").ok());
  EXPECT_EQ(Contents("far/target"), "new");
  EXPECT_TRUE(std::filesystem::is_symlink(At("link")));
  EXPECT_TRUE(std::filesystem::is_symlink(At("link to link")));
  EXPECT_TRUE(files_.FileExists(At("link")));
}

TEST_F(PosixFilesTest, ALinkToNothingMakesItsTarget) {
  ASSERT_EQ(symlink("target", At("link").c_str()), 0);
  EXPECT_FALSE(files_.FileExists(At("link")));
  ASSERT_TRUE(WriteWhole(files_, At("link"), "new").ok());
  EXPECT_EQ(Contents("target"), "new");
}

TEST_F(PosixFilesTest, LinksInACircleFail) {
  ASSERT_EQ(symlink("b", At("a").c_str()), 0);
  ASSERT_EQ(symlink("a", At("b").c_str()), 0);
  EXPECT_FALSE(WriteWhole(files_, At("a"), "x").ok());
  EXPECT_EQ(NamesIn(folder_.path()), (std::vector<std::string>{"a", "b"}));
}

TEST_F(PosixFilesTest, APathHoldsNoNul) {
  const std::string path = At("a") + std::string("\0b", 2);
  EXPECT_FALSE(WriteWhole(files_, path, "x").ok());
  EXPECT_FALSE(files_.FileExists(path));
  EXPECT_FALSE(files_.MakeFolder(path).ok());
  EXPECT_FALSE(files_.Delete(path).ok());
  EXPECT_FALSE(files_.Rename(path, At("c")).ok());
  EXPECT_FALSE(files_.Lock(folder_.path(), std::string("l\0k", 3)).ok());
  EXPECT_TRUE(NamesIn(folder_.path()).empty());
}

TEST_F(PosixFilesTest, APipeIsNotReplaced) {
  ASSERT_EQ(mkfifo(At("pipe").c_str(), 0600), 0);
  EXPECT_FALSE(WriteWhole(files_, At("pipe"), "x").ok());
  EXPECT_FALSE(files_.FileExists(At("pipe")));
}

TEST_F(PosixFilesTest, LongNamesLeaveRoomForTheTemporaryOne) {
  const std::string name(255, 'n');
  EXPECT_TRUE(WriteWhole(files_, At(name), "x").ok());
  EXPECT_EQ(Contents(name), "x");
  EXPECT_FALSE(WriteWhole(files_, At(name + "n"), "x").ok());
}

// The number of a process that has ended.
pid_t DeadProcess() {
  const pid_t child = fork();
  if (child == 0) _exit(0);
  waitpid(child, nullptr, 0);
  return child;
}

TEST_F(PosixFilesTest, WhatADeadProcessHasLeftBehindIsRemovedByTheNextReplacement) {
  const std::string dead = std::to_string(DeadProcess());
  const std::string living = std::to_string(getpid());
  const std::string random = "-0123456789abcdef.partial";
  for (const std::string& name : {".a." + dead + random, ".a." + living + random, ".b." + dead + random}) {
    std::ofstream(At(name)) << "half a file";
  }
  // Somebody else's files with similar names.
  for (const std::string& name : {".a." + dead + ".partial", ".a." + dead + random + "x", "a." + dead + random,
                                  ".a.x" + random, ".a." + dead + "-0123456789abcdeX.partial"}) {
    std::ofstream(At(name)) << "not ours";
  }
  ASSERT_TRUE(WriteWhole(files_, At("a"), "x").ok());
  EXPECT_FALSE(std::filesystem::exists(At(".a." + dead + random)));
  EXPECT_TRUE(std::filesystem::exists(At(".a." + living + random)));
  EXPECT_TRUE(std::filesystem::exists(At(".b." + dead + random)));
  EXPECT_EQ(NamesIn(folder_.path()).size(), 8u);
}

TEST_F(PosixFilesTest, AProcessThatIsKilledWhileItWritesLeavesTheOldFile) {
  ASSERT_TRUE(WriteWhole(files_, At("a"), "old").ok());
  const pid_t child = fork();
  if (child == 0) {
    auto replacement = files_.Replace(At("a"));
    if (replacement.ok()) replacement.value()->Write(std::string(1 << 20, 'n')).Ignore("the end is near");
    raise(SIGKILL);
  }
  waitpid(child, nullptr, 0);
  EXPECT_EQ(Contents("a"), "old");
  EXPECT_EQ(NamesIn(folder_.path()).size(), 2u);
  PosixFiles next_start;
  ASSERT_TRUE(WriteWhole(next_start, At("a"), "new").ok());
  EXPECT_EQ(NamesIn(folder_.path()), std::vector<std::string>{"a"});
}

TEST_F(PosixFilesTest, ALockEndsWithItsProcess) {
  int ready[2];
  ASSERT_EQ(pipe(ready), 0);
  const pid_t child = fork();
  if (child == 0) {
    PosixFiles files;
    const auto lock = files.Lock(folder_.path(), "lock");
    [[maybe_unused]] const ssize_t size = write(ready[1], lock.ok() ? "y" : "n", 1);
    pause();
    _exit(0);
  }
  char answer = 0;
  ASSERT_EQ(read(ready[0], &answer, 1), 1);
  EXPECT_EQ(answer, 'y');
  EXPECT_EQ(files_.Lock(folder_.path(), "lock").status().kind(), StatusKind::kBusy);
  kill(child, SIGKILL);
  waitpid(child, nullptr, 0);
  EXPECT_TRUE(files_.Lock(folder_.path(), "lock").ok());
  close(ready[0]);
  close(ready[1]);
}

TEST_F(PosixFilesTest, ALockIsNotInheritedByProgramsThatAreStarted) {
  auto lock = files_.Lock(folder_.path(), "lock");
  ASSERT_TRUE(lock.ok());
  const pid_t child = fork();
  if (child == 0) {
    execl("/bin/sleep", "sleep", "60", nullptr);
    _exit(1);
  }
  lock.value().reset();
  // The copy that the fork made lives until the child has become the other program.
  bool free = false;
  for (int i = 0; i < 1000 && !free; ++i) {
    free = files_.Lock(folder_.path(), "lock").ok();
    if (!free) usleep(10'000);
  }
  EXPECT_TRUE(free);
  kill(child, SIGKILL);
  waitpid(child, nullptr, 0);
}

// Runs in a child whose files cannot grow beyond `bytes`; its exit status.
template <typename Action>
int WithSmallDisk(rlim_t bytes, Action action) {
  const pid_t child = fork();
  if (child == 0) {
    signal(SIGXFSZ, SIG_IGN);
    const rlimit limit{.rlim_cur = bytes, .rlim_max = bytes};
    setrlimit(RLIMIT_FSIZE, &limit);
    _exit(action());
  }
  int status = 0;
  waitpid(child, &status, 0);
  return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

TEST_F(PosixFilesTest, AFullMediumLeavesTheOldFileWholeAndNoTrace) {
  ASSERT_TRUE(WriteWhole(files_, At("a"), "old").ok());
  for (const std::size_t size : {10'001u, 60'000u, 200'000u}) {
    const int kind = WithSmallDisk(
        10'000, [&] { return static_cast<int>(WriteWhole(files_, At("a"), std::string(size, 'n')).kind()); });
    EXPECT_EQ(kind, static_cast<int>(StatusKind::kFull)) << size;
    EXPECT_EQ(Contents("a"), "old");
    EXPECT_EQ(NamesIn(folder_.path()), std::vector<std::string>{"a"});
  }
}

TEST_F(PosixFilesTest, AFolderThatVanishesIsAFailureAndWritingWorksAgainOnceItIsBack) {
  ASSERT_TRUE(files_.MakeFolder(At("f")).ok());
  auto replacement = files_.Replace(At("f/a"));
  ASSERT_TRUE(replacement.ok());
  ASSERT_TRUE(replacement.value()->Write("x").ok());
  std::filesystem::remove_all(At("f"));
  EXPECT_EQ(replacement.value()->Commit().kind(), StatusKind::kNotFound);
  EXPECT_EQ(WriteWhole(files_, At("f/a"), "x").kind(), StatusKind::kNotFound);
  ASSERT_TRUE(files_.MakeFolder(At("f")).ok());
  EXPECT_TRUE(WriteWhole(files_, At("f/a"), "x").ok());
}

TEST_F(PosixFilesTest, EveryCallAfterAFailureFailsAlike) {
  const int failures = WithSmallDisk(1000, [&] {
    auto replacement = files_.Replace(At("a"));
    if (!replacement.ok()) return 100;
    int count = 0;
    for (int i = 0; i < 3; ++i) {
      count += replacement.value()->Write(std::string(100'000, 'n')).kind() == StatusKind::kFull ? 1 : 0;
    }
    return count + (replacement.value()->Commit().kind() == StatusKind::kFull ? 1 : 0);
  });
  EXPECT_EQ(failures, 4);
  EXPECT_TRUE(NamesIn(folder_.path()).empty());
}

// Runs as somebody who is not root, in a child; its exit status.
template <typename Action>
int AsNobody(Action action) {
  const pid_t child = fork();
  if (child == 0) {
    if (geteuid() == 0 && (setgid(65534) != 0 || setuid(65534) != 0)) _exit(99);
    _exit(action());
  }
  int status = 0;
  waitpid(child, &status, 0);
  return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

TEST_F(PosixFilesTest, WhatIsWriteProtectedIsDenied) {
  ASSERT_TRUE(WriteWhole(files_, At("a"), "old").ok());
  ASSERT_EQ(chmod(folder_.path().c_str(), 0777), 0);
  ASSERT_EQ(chmod(At("a").c_str(), 0444), 0);
  const auto replace = [&] { return static_cast<int>(WriteWhole(files_, At("a"), "new").kind()); };
  EXPECT_EQ(AsNobody(replace), static_cast<int>(StatusKind::kDenied)) << "the file is";

  ASSERT_EQ(chmod(At("a").c_str(), 0666), 0);
  ASSERT_EQ(chmod(folder_.path().c_str(), 0555), 0);
  EXPECT_EQ(AsNobody(replace), static_cast<int>(StatusKind::kDenied)) << "the folder is";
  EXPECT_EQ(AsNobody([&] { return static_cast<int>(files_.MakeFolder(At("sub")).kind()); }),
            static_cast<int>(StatusKind::kDenied));
  EXPECT_EQ(AsNobody([&] { return static_cast<int>(files_.Delete(At("a")).kind()); }),
            static_cast<int>(StatusKind::kDenied));
  EXPECT_EQ(AsNobody([&] { return static_cast<int>(files_.Lock(folder_.path(), "lock").status().kind()); }),
            static_cast<int>(StatusKind::kDenied));
  chmod(folder_.path().c_str(), 0700);
  EXPECT_EQ(Contents("a"), "old");
}

}  // namespace
}  // namespace quenlar
