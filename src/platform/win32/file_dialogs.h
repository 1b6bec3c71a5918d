// The file dialogs of Windows.
#pragma once

#include "platform/file_dialogs.h"

namespace quenlar {

// The dialogs are modal for the active window of the thread. They set the current directory of the process to the
// folder that they show.
class Win32FileDialogs final : public FileDialogs {
 public:
  [[nodiscard]] std::optional<Choice> Open(const FileDialogRequest& request) override;
  [[nodiscard]] std::optional<std::string> Save(const FileDialogRequest& request) override;
};

}  // namespace quenlar
