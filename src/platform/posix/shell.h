// Starting other programs on a POSIX desktop.
#pragma once

#include <string>
#include <vector>

#include "platform/shell.h"

namespace quenlar {

// No command line passes through a shell of the system. A program that is started gets a session of its own, so Ctrl-C
// does not reach it, and it neither reads standard input nor writes to standard output.
class PosixShell : public Shell {
 public:
  PosixShell() = default;
  PosixShell(const PosixShell&) = delete;
  PosixShell& operator=(const PosixShell&) = delete;
  ~PosixShell() override;

  // By "xdg-open", which starts what the desktop has for an address or a file.
  void OpenBrowser(const std::string& address) override;
  Status Edit(const std::string& path) override;
  // The name of the program ends at the first blank, or at the second quote when it begins with one. All that follows
  // is one argument.
  Status Start(const std::string& command_line) override;
  // Does nothing: a clipboard needs the library of a desktop.
  void CopyToClipboard(const std::string& text) override;

 private:
  Status Run(const std::vector<std::string>& arguments);
  void Reap();

  std::vector<int> children_;  // processes that were started and have not been seen to end
};

}  // namespace quenlar
