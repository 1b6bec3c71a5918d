#include <cstdlib>
#include <optional>

#include <gtest/gtest.h>

#include "platform/posix/user_folders.h"

namespace quenlar {
namespace {

// The environment as it was comes back.
class UserFolders : public testing::Test {
 protected:
  void SetUp() override {
    for (const char* name : kNames) {
      const char* const value = std::getenv(name);
      before_.emplace_back(value == nullptr ? std::nullopt : std::optional<std::string>(value));
      unsetenv(name);
    }
  }
  void TearDown() override {
    for (std::size_t i = 0; i < before_.size(); ++i) {
      before_[i] ? setenv(kNames[i], before_[i]->c_str(), 1) : unsetenv(kNames[i]);
    }
  }
  static constexpr const char* kNames[] = {"HOME", "XDG_DATA_HOME", "XDG_CONFIG_HOME"};

 private:
  std::vector<std::optional<std::string>> before_;
};

TEST_F(UserFolders, LieBelowTheUsersOwnFolder) {
  setenv("HOME", "/home/somebody/", 1);
  EXPECT_EQ(UserDataFolder(), "/home/somebody/.local/share");
  EXPECT_EQ(UserConfigFolder(), "/home/somebody/.config");
}

TEST_F(UserFolders, AreThoseOfTheEnvironmentWhereItNamesThem) {
  setenv("HOME", "/home/somebody", 1);
  setenv("XDG_DATA_HOME", "/data/", 1);
  setenv("XDG_CONFIG_HOME", "/config", 1);
  EXPECT_EQ(UserDataFolder(), "/data");
  EXPECT_EQ(UserConfigFolder(), "/config");
}

TEST_F(UserFolders, DoNotFollowARelativePathInTheEnvironment) {
  setenv("HOME", "/home/somebody", 1);
  setenv("XDG_DATA_HOME", "data", 1);
  setenv("XDG_CONFIG_HOME", "", 1);
  EXPECT_EQ(UserDataFolder(), "/home/somebody/.local/share");
  EXPECT_EQ(UserConfigFolder(), "/home/somebody/.config");
}

TEST_F(UserFolders, AreKnownWithoutAnEnvironment) {
  EXPECT_TRUE(UserDataFolder().ends_with("/.local/share")) << UserDataFolder();
  EXPECT_TRUE(UserConfigFolder().ends_with("/.config"));
}

}  // namespace
}  // namespace quenlar
