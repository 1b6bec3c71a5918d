// Starting other programs on a POSIX desktop.
#pragma once

#include <string>
#include <vector>

#include "platform/shell.h"

namespace quenlar {

// No command line passes through a shell. What is started has a session of its own, so Ctrl-C does not reach it, and
// neither reads the standard input nor writes to the standard output.
class PosixShell : public Shell {
 public:
  PosixShell() = default;
  PosixShell(const PosixShell&) = delete;
  PosixShell& operator=(const PosixShell&) = delete;
  ~PosixShell() override;

  // "xdg-open" where it is installed.
  [[nodiscard]] std::optional<std::string> HttpOpenCommand() const override;
  // The parameters are one argument.
  void Open(const std::string& program, const std::string& parameters) override;
  [[nodiscard]] std::string SystemDirectory() const override { return "/usr/bin"; }
  // The program's name ends at the first blank, or at the second quote when it begins with one; the rest is one
  // argument.
  Status Start(const std::string& command_line, WindowMode mode) override;
  // There is no clipboard without a desktop's own library.
  void CopyToClipboard(const std::string& text) override;

 private:
  Status Run(const std::vector<std::string>& arguments);
  void Reap();

  std::vector<int> children_;  // started and not yet seen to end
};

}  // namespace quenlar
