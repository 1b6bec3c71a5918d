#include "platform/win32/system_error.h"

#include "platform/win32/wide.h"
#include "platform/win32/windows_api.h"

namespace quenlar::win32 {
namespace {

constexpr DWORD kDiskQuotaExceeded = 1295;  // not in every set of headers

StatusKind KindOf(DWORD error) {
  switch (error) {
    case ERROR_FILE_NOT_FOUND:
    case ERROR_PATH_NOT_FOUND:
    case ERROR_INVALID_NAME:
    case ERROR_BAD_PATHNAME:
    case ERROR_INVALID_DRIVE:
    case ERROR_NOT_READY:
    case ERROR_BAD_NETPATH:
    case ERROR_BAD_NET_NAME:
      return StatusKind::kNotFound;
    case ERROR_ACCESS_DENIED:
    case ERROR_WRITE_PROTECT:
    case ERROR_NETWORK_ACCESS_DENIED:
    case ERROR_PRIVILEGE_NOT_HELD:
      return StatusKind::kDenied;
    case ERROR_DISK_FULL:
    case ERROR_HANDLE_DISK_FULL:
    case kDiskQuotaExceeded:
      return StatusKind::kFull;
    case ERROR_SHARING_VIOLATION:
    case ERROR_LOCK_VIOLATION:
      return StatusKind::kBusy;
    default:
      return StatusKind::kFailed;
  }
}

// Without the line end and the full stop that the system puts there.
std::string WordsOf(DWORD error) {
  wchar_t words[512];
  const DWORD length = FormatMessageW(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS, nullptr, error, 0,
                                      words, static_cast<DWORD>(std::size(words)), nullptr);
  std::wstring_view text(words, length);
  while (!text.empty() && (text.back() <= L' ' || text.back() == L'.')) text.remove_suffix(1);
  return text.empty() ? "system error " + std::to_string(error) : FromWide(text);
}

}  // namespace

Status SystemError(const std::string& object, unsigned long error) {
  return {KindOf(error), object + ": " + WordsOf(error)};
}

}  // namespace quenlar::win32
