#include "platform/win32/wide.h"

#include <algorithm>

#include "platform/win32/windows_api.h"

namespace quenlar::win32 {
namespace {

// From here on a path needs the prefix; a folder must leave room for a file name in the old form.
constexpr std::size_t kShortPath = MAX_PATH - 13;

// The full path with "." and ".." resolved, which the prefix does not allow.
std::wstring FullPath(const std::wstring& path) {
  std::wstring full(GetFullPathNameW(path.c_str(), 0, nullptr, nullptr), L'\0');
  const DWORD length = GetFullPathNameW(path.c_str(), static_cast<DWORD>(full.size()), full.data(), nullptr);
  if (length == 0 || length >= full.size()) return path;
  full.resize(length);
  return full;
}

}  // namespace

std::wstring ToWide(std::string_view utf8) {
  if (utf8.empty()) return {};
  const int bytes = static_cast<int>(utf8.size());
  std::wstring wide(static_cast<std::size_t>(MultiByteToWideChar(CP_UTF8, 0, utf8.data(), bytes, nullptr, 0)), L'\0');
  MultiByteToWideChar(CP_UTF8, 0, utf8.data(), bytes, wide.data(), static_cast<int>(wide.size()));
  return wide;
}

std::string FromWide(std::wstring_view wide) {
  if (wide.empty()) return {};
  const int units = static_cast<int>(wide.size());
  const int bytes = WideCharToMultiByte(CP_UTF8, 0, wide.data(), units, nullptr, 0, nullptr, nullptr);
  std::string utf8(static_cast<std::size_t>(bytes), '\0');
  WideCharToMultiByte(CP_UTF8, 0, wide.data(), units, utf8.data(), bytes, nullptr, nullptr);
  return utf8;
}

std::wstring NativePath(std::string_view utf8_path) {
  std::wstring path = ToWide(utf8_path);
  std::replace(path.begin(), path.end(), L'/', L'\\');
  std::replace(path.begin(), path.end(), L'\0', L'|');
  if (path.size() < kShortPath || path.starts_with(L"\\\\?\\")) return path;
  path = FullPath(path);
  return path.starts_with(L"\\\\") ? L"\\\\?\\UNC" + path.substr(1) : L"\\\\?\\" + path;
}

std::string CurrentFolder() {
  std::wstring folder(GetCurrentDirectoryW(0, nullptr), L'\0');
  folder.resize(GetCurrentDirectoryW(static_cast<DWORD>(folder.size()), folder.data()));
  return FromWide(folder);
}

}  // namespace quenlar::win32
