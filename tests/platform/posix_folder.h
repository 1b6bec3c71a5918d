// A folder of one test, on POSIX systems.
#pragma once

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

namespace quenlar {

inline std::vector<std::string> NamesIn(const std::string& folder) {
  std::vector<std::string> names;
  for (const auto& entry : std::filesystem::directory_iterator(folder)) names.push_back(entry.path().filename());
  std::sort(names.begin(), names.end());
  return names;
}

// Empty at first, removed with all that is in it.
class PosixFolder {
 public:
  PosixFolder() : path_(std::filesystem::temp_directory_path() / "quenlar-test-XXXXXX") {
    if (mkdtemp(path_.data()) == nullptr) std::abort();
  }
  PosixFolder(const PosixFolder&) = delete;
  PosixFolder& operator=(const PosixFolder&) = delete;
  ~PosixFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
  }
  [[nodiscard]] const std::string& path() const { return path_; }

 private:
  std::string path_;
};

}  // namespace quenlar
