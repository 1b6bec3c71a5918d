// Places of one test on Windows: a folder, a registry, a trusted authority. All are gone after it.
#pragma once

#include <string>
#include <vector>

// clang-format off
#include "platform/win32/windows_api.h"
#include <wincrypt.h>
// clang-format on

namespace quenlar {

// The names of everything in a folder, sorted.
[[nodiscard]] std::vector<std::string> NamesIn(const std::string& folder);

// Empty at first, removed with all that is in it.
class ScratchFolder {
 public:
  ScratchFolder();
  ~ScratchFolder();
  ScratchFolder(const ScratchFolder&) = delete;
  ScratchFolder& operator=(const ScratchFolder&) = delete;
  [[nodiscard]] const std::string& path() const { return path_; }  // forward slashes

 private:
  std::string path_;
};

// While it lives, the machine's and the user's registry of this process are two empty ones.
class ScratchRegistry {
 public:
  ScratchRegistry();
  ~ScratchRegistry();
  ScratchRegistry(const ScratchRegistry&) = delete;
  ScratchRegistry& operator=(const ScratchRegistry&) = delete;

 private:
  std::wstring name_;
};

// While it lives, the certificates of a PEM file are trusted by the user, and none of "Test Authority" but these.
class TrustedAuthority {
 public:
  explicit TrustedAuthority(const std::string& pem_path);
  ~TrustedAuthority();
  TrustedAuthority(const TrustedAuthority&) = delete;
  TrustedAuthority& operator=(const TrustedAuthority&) = delete;

 private:
  // Deletes the certificates of that name, in the registry too.
  void DeleteAll();

  HCERTSTORE store_;
};

}  // namespace quenlar
