#include "cli/paths.h"

#include <algorithm>
#include <filesystem>
#include <system_error>

namespace quenlar {
namespace {

namespace fs = std::filesystem;

fs::path FromUtf8(const std::string& text) { return {std::u8string(text.begin(), text.end())}; }

std::string ToUtf8(const fs::path& path) {
  const std::u8string text = path.u8string();
  return {text.begin(), text.end()};
}

// "\\\\server\\share" of Windows, which the library takes for a path on the current drive.
bool NamesAMachine(const std::string& path) {
  const auto separator = [](char c) { return c == '/' || c == '\\'; };
  return fs::path::preferred_separator == '\\' && path.size() > 2 && separator(path[0]) && separator(path[1]);
}

// Such a path is absolute; ".." in it is the system's to resolve.
std::string PathOnAMachine(std::string path) {
  std::replace(path.begin(), path.end(), '/', '\\');
  while (path.ends_with('\\')) path.pop_back();
  return path;
}

}  // namespace

std::string AbsolutePath(const std::string& path) {
  if (NamesAMachine(path)) return PathOnAMachine(path);
  std::error_code error;
  fs::path absolute = fs::absolute(FromUtf8(path), error);
  if (error) return "";
  // ".." stays: behind a link it does not mean the folder named before it. (Windows takes it for that folder all the
  // same, so there it may have gone already.)
  const bool has_parent = std::find(absolute.begin(), absolute.end(), fs::path("..")) != absolute.end();
  if (!has_parent) absolute = absolute.lexically_normal();
  absolute.make_preferred();
  if (!absolute.has_filename() && absolute.has_relative_path()) absolute = absolute.parent_path();
  return ToUtf8(absolute);
}

std::string MakeTemporaryFolder(const std::string& name) {
  std::error_code error;
  const fs::path folder = fs::temp_directory_path(error);
  if (error) return "";
  for (int number = 1;; ++number) {
    const fs::path path = folder / (name + "-" + std::to_string(number));
    const bool made = fs::create_directory(path, error);  // also false where another program was quicker
    if (made || !fs::exists(fs::symlink_status(path, error))) return ToUtf8(path);
  }
}

}  // namespace quenlar
