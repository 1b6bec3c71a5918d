#include "forms/dlg_select_file_info.h"

#include "base/ascii.h"

namespace quenlar {
namespace {

constexpr std::size_t kMaxFiles = 32767;  // a 16-bit count

}  // namespace

std::optional<DlgSelectFileInfo> GetDlgSelectFileInfo(std::string_view fileNameText, std::string_view current_folder) {
  if (fileNameText.size() < current_folder.size()) return std::nullopt;
  std::string_view rest = fileNameText.substr(current_folder.size());

  DlgSelectFileInfo info;
  if (!rest.empty() && rest.front() == '\0') {
    constexpr std::string_view kNul("\0", 1);
    for (const std::string_view name : Split(rest.substr(1), kNul)) info.Files.emplace_back(name);
    if (info.Files.size() > kMaxFiles) return std::nullopt;
  } else {
    if (!rest.empty() && rest.front() == '\\') rest.remove_prefix(1);
    info.Files.emplace_back(rest);
  }
  info.Folder = current_folder;
  if (info.Folder.empty() || info.Folder.back() != '\\') info.Folder += '\\';
  return info;
}

}  // namespace quenlar
