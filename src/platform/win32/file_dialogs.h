// The file dialogs of Windows.
#pragma once

#include "platform/file_dialogs.h"

namespace quenlar {

// Modal for the thread's active window. The process's current directory is afterwards the folder that was shown.
class Win32FileDialogs final : public FileDialogs {
 public:
  [[nodiscard]] std::optional<Choice> Open(const FileDialogRequest& request) override;
  [[nodiscard]] std::optional<std::string> Save(const FileDialogRequest& request) override;
};

}  // namespace quenlar
