#include "platform/win32/shell.h"

#include <optional>

#include "platform/win32/clipboard.h"
#include "platform/win32/command_lines.h"
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

// The open command registered for http; empty when there is none.
std::optional<std::string> HttpOpenCommand() {
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

std::string SystemDirectory() {
  std::wstring folder(MAX_PATH, L'\0');
  folder.resize(GetSystemDirectoryW(folder.data(), static_cast<UINT>(folder.size())));
  return win32::FromWide(folder);
}

// `show` is the way in which the program's first window is shown (SW_...).
Status StartProgram(const std::string& command_line, WORD show) {
  STARTUPINFOW start{};
  start.cb = sizeof start;
  start.dwFlags = STARTF_USESHOWWINDOW;
  start.wShowWindow = show;
  PROCESS_INFORMATION process{};
  std::wstring writable = win32::ToWide(command_line);  // the call may write into it
  if (!CreateProcessW(nullptr, writable.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &start, &process)) {
    return win32::SystemError(command_line, GetLastError());
  }
  CloseHandle(process.hThread);
  CloseHandle(process.hProcess);
  return {};
}

}  // namespace

void Win32Shell::OpenBrowser(const std::string& address) {
  const auto command = HttpOpenCommand();
  if (!command) return;
  const std::string program = win32::BrowserProgram(*command);
  if (program.empty()) return;
  const Apartment apartment;
  ShellExecuteW(nullptr, L"open", win32::ToWide(program).c_str(), win32::ToWide(address).c_str(), L"", SW_SHOWNORMAL);
}

Status Win32Shell::Edit(const std::string& path) {
  return StartProgram(win32::EditorCommandLine(SystemDirectory(), path), SW_SHOWNOACTIVATE);
}

Status Win32Shell::Start(const std::string& command_line) { return StartProgram(command_line, SW_SHOWNORMAL); }

void Win32Shell::CopyToClipboard(const std::string& text) { win32::PutOnClipboard(text); }

}  // namespace quenlar
