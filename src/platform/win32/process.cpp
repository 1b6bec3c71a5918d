#include "platform/win32/process.h"

#include "platform/win32/wide.h"
#include "platform/win32/windows_api.h"

namespace quenlar::win32 {

std::vector<std::string> Arguments() {
  int count = 0;
  wchar_t** const values = CommandLineToArgvW(GetCommandLineW(), &count);
  if (values == nullptr) return {};
  std::vector<std::string> arguments;
  for (int i = 1; i < count; ++i) arguments.push_back(FromWide(values[i]));
  LocalFree(values);
  return arguments;
}

std::optional<std::string> EnvironmentValue(const std::string& name) {
  const std::wstring wide_name = ToWide(name);
  std::wstring value;
  for (;;) {
    SetLastError(ERROR_SUCCESS);
    const DWORD length = GetEnvironmentVariableW(wide_name.c_str(), value.data(), static_cast<DWORD>(value.size()));
    if (length == 0 && GetLastError() == ERROR_ENVVAR_NOT_FOUND) return std::nullopt;
    if (length < value.size() || length == 0) return FromWide(value.substr(0, length));
    value.resize(length);  // with the closing NUL
  }
}

std::string ProgramFolder() {
  std::wstring path(MAX_PATH, L'\0');
  DWORD length = 0;
  while ((length = GetModuleFileNameW(nullptr, path.data(), static_cast<DWORD>(path.size()))) == path.size()) {
    path.resize(path.size() * 2);
  }
  path.resize(length);
  const std::string folder = FromWide(path.substr(0, path.find_last_of(L'\\')));
  return folder.ends_with(':') ? folder + "\\" : folder;
}

}  // namespace quenlar::win32
