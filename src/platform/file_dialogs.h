// The system's dialogs for choosing files. Both pump until the user has answered. All texts are UTF-8.
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
    // One file: its full path. Several files: the folder, then NUL and a name for each, without a NUL at the end. Empty
    // when the user has chosen more files than the dialog can hand over.
    std::string names;
    // The current directory of the process when the dialog closed. The dialog sets it to the folder that it shows.
    std::string current_folder;
  };
  // Asks for existing files. Empty when the user has cancelled.
  [[nodiscard]] virtual std::optional<Choice> Open(const FileDialogRequest& request) = 0;
  // Asks for the name of a file to be written. Returns its full path, or nothing when the user has cancelled. The
  // dialog does not ask whether an existing file may be replaced.
  [[nodiscard]] virtual std::optional<std::string> Save(const FileDialogRequest& request) = 0;
};

}  // namespace quenlar
