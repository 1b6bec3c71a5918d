// Splits the answer of a file dialog for several files.
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

// Splits the `names` of FileDialogs::Choice into the folder and the bare names. `current_folder` is the other member of
// the choice. Empty when the text does not fit the folder; the caller then shows "GetDlgSelectFileInfo error !".
[[nodiscard]] std::optional<DlgSelectFileInfo> GetDlgSelectFileInfo(std::string_view fileNameText,
                                                                    std::string_view current_folder);

}  // namespace quenlar
