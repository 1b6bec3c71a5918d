// Starting other programs.
#pragma once

#include <string>

#include "base/status.h"

namespace quenlar {

class Shell {
 public:
  virtual ~Shell() = default;

  // Opens an address (http, https or file) in the user's browser. The address is one argument: no blanks, no quotes, no
  // control characters. Does nothing where the system knows no browser. May pump.
  virtual void OpenBrowser(const std::string& address) = 0;

  // Opens a text file in the system's plain editor, in a window that does not take the focus, and does not wait for it.
  // `path` is absolute. Fails where the editor cannot be started; what becomes of it then, nobody hears. Does not pump.
  virtual Status Edit(const std::string& path) = 0;

  // Starts a command line as it stands, in a normal window, and does not wait for it.
  virtual Status Start(const std::string& command_line) = 0;

  // Puts a text (UTF-8) on the clipboard in the place of what is there. Nothing happens where another program holds the
  // clipboard for too long, or the system has none. Does not pump.
  virtual void CopyToClipboard(const std::string& text) = 0;
};

}  // namespace quenlar
