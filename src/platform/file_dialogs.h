// The system's dialogs for choosing files. Both pump until the user has chosen.
#pragma once

#include <optional>
#include <string>

namespace quenlar {

struct FileDialogRequest {
  std::string title;
  std::string filter;         // "Text Files (*.txt;*.rpt)|*.txt;*.rpt": captions and masks between "|"
  std::string folder;         // where the dialog starts
  std::string proposed_name;  // may be empty
  bool several = false;       // several files may be chosen
};

class FileDialogs {
 public:
  virtual ~FileDialogs() = default;

  struct Choice {
    // One file: its full path. Several: the folder, NUL, a name, NUL, a name ... (no final NUL). Empty where more was
    // chosen than the dialog can hand over.
    std::string names;
    // The process's current directory at the moment at which the dialog closed: the folder that was shown.
    std::string current_folder;
  };
  // Empty when the user cancelled.
  [[nodiscard]] virtual std::optional<Choice> Open(const FileDialogRequest& request) = 0;
  // The full path of the chosen file; existing files are accepted without a question.
  [[nodiscard]] virtual std::optional<std::string> Save(const FileDialogRequest& request) = 0;
};

}  // namespace quenlar
