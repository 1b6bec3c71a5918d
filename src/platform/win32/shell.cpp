#include "platform/win32/shell.h"

#include "platform/win32/clipboard.h"
#include "platform/win32/system_error.h"
#include "platform/win32/wide.h"
#include "platform/win32/windows_api.h"

namespace quenlar {
namespace {

// Some handlers of documents and addresses are COM objects.
class Apartment {
 public:
  Apartment() : entered_(SUCCEEDED(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED | COINIT_DISABLE_OLE1DDE))) {}
  ~Apartment() {
    if (entered_) CoUninitialize();
  }
  Apartment(const Apartment&) = delete;
  Apartment& operator=(const Apartment&) = delete;

 private:
  bool entered_;
};

}  // namespace

std::optional<std::string> Win32Shell::HttpOpenCommand() const {
  HKEY key = nullptr;
  if (RegOpenKeyExW(HKEY_CLASSES_ROOT, L"http\\shell\\open\\command", 0, KEY_READ, &key) != ERROR_SUCCESS) {
    return std::nullopt;
  }
  std::wstring command;
  DWORD bytes = 0;
  if (RegQueryValueExW(key, L"", nullptr, nullptr, nullptr, &bytes) == ERROR_SUCCESS) {
    command.resize(bytes / sizeof(wchar_t));
    if (RegQueryValueExW(key, L"", nullptr, nullptr, reinterpret_cast<BYTE*>(command.data()), &bytes) !=
        ERROR_SUCCESS) {
      command.clear();
    }
  }
  RegCloseKey(key);
  while (!command.empty() && command.back() == L'\0') command.pop_back();
  return win32::FromWide(command);
}

void Win32Shell::Open(const std::string& program, const std::string& parameters) {
  const Apartment apartment;
  ShellExecuteW(nullptr, L"open", win32::ToWide(program).c_str(), win32::ToWide(parameters).c_str(), L"",
                SW_SHOWNORMAL);
}

std::string Win32Shell::SystemDirectory() const {
  std::wstring folder(MAX_PATH, L'\0');
  folder.resize(GetSystemDirectoryW(folder.data(), static_cast<UINT>(folder.size())));
  return win32::FromWide(folder);
}

Status Win32Shell::Start(const std::string& command_line, WindowMode mode) {
  STARTUPINFOW start{};
  start.cb = sizeof start;
  start.dwFlags = STARTF_USESHOWWINDOW;
  start.wShowWindow = mode == WindowMode::kNormalWithoutFocus ? SW_SHOWNOACTIVATE : SW_SHOWNORMAL;
  PROCESS_INFORMATION process{};
  std::wstring writable = win32::ToWide(command_line);  // the call may write into it
  if (!CreateProcessW(nullptr, writable.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &start, &process)) {
    return win32::SystemError(command_line, GetLastError());
  }
  CloseHandle(process.hThread);
  CloseHandle(process.hProcess);
  return {};
}

void Win32Shell::CopyToClipboard(const std::string& text) { win32::PutOnClipboard(text); }

}  // namespace quenlar
