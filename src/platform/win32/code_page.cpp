#include "platform/win32/code_page.h"

#include "base/windows1252.h"
#include "platform/win32/wide.h"
#include "platform/win32/windows_api.h"

namespace quenlar {

Win32CodePage::Win32CodePage() : number_(GetACP()), exact_(number_ != CP_UTF8 && number_ != 54936) {}

std::string Win32CodePage::ToUtf8(std::string bytes) const {
  if (IsAscii(bytes)) return bytes;
  const int size = static_cast<int>(bytes.size());
  std::wstring wide(static_cast<std::size_t>(MultiByteToWideChar(number_, 0, bytes.data(), size, nullptr, 0)), L'\0');
  MultiByteToWideChar(number_, 0, bytes.data(), size, wide.data(), static_cast<int>(wide.size()));
  return win32::FromWide(wide);
}

std::string Win32CodePage::FromUtf8(std::string text) const {
  if (IsAscii(text)) return text;
  const std::wstring wide = win32::ToWide(text);
  const DWORD flags = exact_ ? WC_NO_BEST_FIT_CHARS : 0;
  const char* substitute = exact_ ? "?" : nullptr;
  const int units = static_cast<int>(wide.size());
  const int size = WideCharToMultiByte(number_, flags, wide.data(), units, nullptr, 0, substitute, nullptr);
  std::string bytes(static_cast<std::size_t>(size), '\0');
  WideCharToMultiByte(number_, flags, wide.data(), units, bytes.data(), size, substitute, nullptr);
  return bytes;
}

}  // namespace quenlar
