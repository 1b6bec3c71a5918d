#include "platform/win32/file_dialogs.h"

#include <algorithm>
#include <string>

#include <cderr.h>

#include "platform/win32/wide.h"
#include "platform/win32/windows_api.h"

namespace quenlar {
namespace {

using win32::ToWide;

constexpr std::size_t kNameBuffer = 32767;  // characters

// What the dialog is given, and the buffers that it points into.
class DialogInput {
 public:
  DialogInput(const FileDialogRequest& request, DWORD flags)
      : title_(ToWide(request.title)), folder_(ToWide(request.folder)), filter_(ToWide(request.filter)) {
    std::replace(filter_.begin(), filter_.end(), L'|', L'\0');
    filter_.append(2, L'\0');
    std::replace(folder_.begin(), folder_.end(), L'/', L'\\');
    names = ToWide(request.proposed_name);
    names.resize(kNameBuffer);
    record.lStructSize = sizeof record;
    record.hwndOwner = GetActiveWindow();
    record.lpstrFilter = filter_.c_str();
    record.nFilterIndex = 1;
    record.lpstrFile = names.data();
    record.nMaxFile = static_cast<DWORD>(names.size());
    record.lpstrInitialDir = folder_.empty() ? nullptr : folder_.c_str();
    record.lpstrTitle = title_.empty() ? nullptr : title_.c_str();
    record.Flags = flags;
  }
  DialogInput(const DialogInput&) = delete;
  DialogInput& operator=(const DialogInput&) = delete;

  OPENFILENAMEW record{};
  std::wstring names;

 private:
  std::wstring title_, folder_, filter_;
};

}  // namespace

std::optional<FileDialogs::Choice> Win32FileDialogs::Open(const FileDialogRequest& request) {
  // Shortcuts are not followed and the read-only box is hidden; names of missing files are accepted.
  const DWORD several = request.several ? OFN_ALLOWMULTISELECT : 0;
  DialogInput input(request, OFN_HIDEREADONLY | OFN_EXPLORER | OFN_NODEREFERENCELINKS | several);
  if (!GetOpenFileNameW(&input.record)) {
    if (CommDlgExtendedError() != FNERR_BUFFERTOOSMALL) return std::nullopt;
    return Choice{"", win32::CurrentFolder()};
  }
  // The names end at the first of two NULs.
  const std::size_t end = request.several ? input.names.find(std::wstring_view(L"\0\0", 2)) : input.names.find(L'\0');
  return Choice{win32::FromWide(std::wstring_view(input.names).substr(0, end)), win32::CurrentFolder()};
}

std::optional<std::string> Win32FileDialogs::Save(const FileDialogRequest& request) {
  DialogInput input(request, 0);
  if (!GetSaveFileNameW(&input.record)) return std::nullopt;
  return win32::FromWide(std::wstring_view(input.names).substr(0, input.names.find(L'\0')));
}

}  // namespace quenlar
