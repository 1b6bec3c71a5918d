// Splits what a file dialog for several files returned.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace quenlar {

struct DlgSelectFileInfo {
  std::string Folder;              // ends in "\"
  std::vector<std::string> Files;  // bare names
};

// `current_folder` is the process's current directory as the dialog left it. Empty on an error (the text is no
// result for this folder); the caller then shows "GetDlgSelectFileInfo error !".
[[nodiscard]] std::optional<DlgSelectFileInfo> GetDlgSelectFileInfo(std::string_view fileNameText,
                                                                    std::string_view current_folder);

}  // namespace quenlar
