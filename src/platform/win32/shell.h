// Starting other programs on Windows, and its clipboard.
#pragma once

#include "platform/shell.h"

namespace quenlar {

class Win32Shell final : public Shell {
 public:
  // The browser is the program registered for http. Pumps while it is found and started.
  void OpenBrowser(const std::string& address) override;
  Status Edit(const std::string& path) override;
  Status Start(const std::string& command_line) override;
  void CopyToClipboard(const std::string& text) override;
};

}  // namespace quenlar
