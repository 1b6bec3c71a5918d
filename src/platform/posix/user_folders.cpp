#include "platform/posix/user_folders.h"

#include <cstdlib>

#include <pwd.h>
#include <unistd.h>

namespace quenlar {
namespace {

std::string AbsoluteFrom(const char* path) {
  std::string folder = path != nullptr && *path == '/' ? path : "";
  while (folder.size() > 1 && folder.back() == '/') folder.pop_back();
  return folder;
}

// HOME, or what the user database says where the environment is empty.
std::string UserFolder() {
  std::string folder = AbsoluteFrom(std::getenv("HOME"));
  if (!folder.empty()) return folder;
  const passwd* const user = getpwuid(getuid());
  return AbsoluteFrom(user != nullptr ? user->pw_dir : nullptr);
}

// A relative path in one of these variables is to be ignored.
std::string FolderBy(const char* variable, const char* below_user) {
  std::string folder = AbsoluteFrom(std::getenv(variable));
  if (!folder.empty()) return folder;
  folder = UserFolder();
  return folder.empty() ? "" : folder + below_user;
}

}  // namespace

std::string UserDataFolder() { return FolderBy("XDG_DATA_HOME", "/.local/share"); }
std::string UserConfigFolder() { return FolderBy("XDG_CONFIG_HOME", "/.config"); }

}  // namespace quenlar
