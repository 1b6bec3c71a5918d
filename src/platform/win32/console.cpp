#include "platform/win32/console.h"

#include <algorithm>

#include "platform/win32/wide.h"
#include "platform/win32/windows_api.h"

namespace quenlar {
namespace {

bool IsConsole(HANDLE stream) {
  DWORD mode = 0;
  return GetConsoleMode(stream, &mode) != 0;
}

bool WriteBytes(HANDLE stream, std::string_view bytes) {
  constexpr std::size_t kMost = 1 << 20;
  while (!bytes.empty()) {
    DWORD written = 0;
    const auto size = static_cast<DWORD>(std::min(bytes.size(), kMost));
    if (!WriteFile(stream, bytes.data(), size, &written, nullptr) || written == 0) return false;
    bytes.remove_prefix(written);
  }
  return true;
}

bool WriteCharacters(HANDLE console, std::string_view utf8) {
  constexpr std::size_t kMost = 8192;  // of one call, in UTF-16 units
  const std::wstring text = win32::ToWide(utf8);
  for (std::size_t at = 0; at < text.size();) {
    DWORD written = 0;
    const auto size = static_cast<DWORD>(std::min(text.size() - at, kMost));
    if (!WriteConsoleW(console, text.data() + at, size, &written, nullptr) || written == 0) return false;
    at += written;
  }
  return true;
}

bool WriteTo(HANDLE stream, std::string_view bytes) {
  return IsConsole(stream) ? WriteCharacters(stream, bytes) : WriteBytes(stream, bytes);
}

}  // namespace

Win32Console::Win32Console() {
  const HANDLE error = GetStdHandle(STD_ERROR_HANDLE);
  DWORD mode = 0;
  error_understands_escapes_ =
      GetConsoleMode(error, &mode) != 0 && SetConsoleMode(error, mode | ENABLE_VIRTUAL_TERMINAL_PROCESSING) != 0;
}

bool Win32Console::Write(std::string_view bytes) {
  if (!gone_ && !WriteTo(GetStdHandle(STD_OUTPUT_HANDLE), bytes)) {
    const DWORD error = GetLastError();
    gone_ = true;
    full_ = error == ERROR_DISK_FULL || error == ERROR_HANDLE_DISK_FULL;
  }
  return !gone_;
}

void Win32Console::WriteError(std::string_view bytes) { (void)WriteTo(GetStdHandle(STD_ERROR_HANDLE), bytes); }

std::size_t Win32Console::Read(char* buffer, std::size_t size) {
  constexpr std::size_t kMost = 1 << 20;
  DWORD got = 0;
  const auto wanted = static_cast<DWORD>(std::min(size, kMost));
  return ReadFile(GetStdHandle(STD_INPUT_HANDLE), buffer, wanted, &got, nullptr) ? got : 0;
}

bool Win32Console::InputIsTerminal() const { return IsConsole(GetStdHandle(STD_INPUT_HANDLE)); }
bool Win32Console::OutputIsTerminal() const { return IsConsole(GetStdHandle(STD_OUTPUT_HANDLE)); }

int Win32Console::ErrorColumns() const {
  constexpr int kUsual = 80;
  CONSOLE_SCREEN_BUFFER_INFO info{};
  if (!GetConsoleScreenBufferInfo(GetStdHandle(STD_ERROR_HANDLE), &info)) return kUsual;
  return std::max(1, info.srWindow.Right - info.srWindow.Left + 1);
}

}  // namespace quenlar
