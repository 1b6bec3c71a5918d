// Replays the seeds and the finds of every fuzz target.
#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>

#include <gtest/gtest.h>

#include "fuzz/target.h"

namespace quenlar::fuzz {
namespace {

namespace fs = std::filesystem;

fs::path FuzzFolder() {
  const char* tests = std::getenv("QUENLAR_TEST_DATA");
  return fs::path(tests != nullptr ? tests : "tests").parent_path() / "fuzz";
}

std::string Bytes(const fs::path& file) {
  std::ifstream in(file, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), {}};
}

std::size_t Replay(const Target& target, const fs::path& folder) {
  std::size_t files = 0;
  if (!fs::is_directory(folder)) return 0;
  for (const auto& entry : fs::directory_iterator(folder)) {
    SCOPED_TRACE(entry.path().string());
    target.run(Bytes(entry.path()));
    ++files;
  }
  return files;
}

TEST(FuzzReplay, EveryTargetHasSeedsAndKeepsItsPromisesOnThemAndOnAllFinds) {
  ASSERT_FALSE(Targets().empty());
  for (const Target& target : Targets()) {
    EXPECT_GT(Replay(target, FuzzFolder() / "seeds" / target.name), 0u) << target.name;
    Replay(target, FuzzFolder() / "finds" / target.name);
  }
}

TEST(FuzzReplay, EveryFindBelongsToATarget) {
  const fs::path finds = FuzzFolder() / "finds";
  if (!fs::is_directory(finds)) return;
  for (const auto& entry : fs::directory_iterator(finds)) {
    const std::string name = entry.path().filename().string();
    EXPECT_TRUE(std::any_of(Targets().begin(), Targets().end(), [&](const Target& t) { return t.name == name; }))
        << name;
  }
}

TEST(FuzzReplay, EveryTargetSurvivesEmptyAndZeroInput) {
  for (const Target& target : Targets()) {
    target.run("");
    target.run(std::string(64, '\0'));
  }
}

}  // namespace
}  // namespace quenlar::fuzz
