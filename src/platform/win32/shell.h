// Starting other programs on Windows, and its clipboard.
#pragma once

#include "platform/shell.h"

namespace quenlar {

class Win32Shell final : public Shell {
 public:
  [[nodiscard]] std::optional<std::string> HttpOpenCommand() const override;
  // May pump while the other program is found and started.
  void Open(const std::string& program, const std::string& parameters) override;
  [[nodiscard]] std::string SystemDirectory() const override;
  Status Start(const std::string& command_line, WindowMode mode) override;
  void CopyToClipboard(const std::string& text) override;
};

}  // namespace quenlar
