// Starting other programs.
#pragma once

#include <optional>
#include <string>

#include "base/status.h"

namespace quenlar {

class Shell {
 public:
  virtual ~Shell() = default;

  // The open command registered for http (the default value of `http\shell\open\command`); empty when there is none.
  [[nodiscard]] virtual std::optional<std::string> HttpOpenCommand() const = 0;

  // Opens `program` with `parameters` as one parameter text, verb "open", normal window (ShellExecute on Windows).
  virtual void Open(const std::string& program, const std::string& parameters) = 0;

  [[nodiscard]] virtual std::string SystemDirectory() const = 0;

  enum class WindowMode { kNormal, kNormalWithoutFocus };
  // Starts a command line as it stands and does not wait for it.
  virtual Status Start(const std::string& command_line, WindowMode mode) = 0;

  virtual void CopyToClipboard(const std::string& text) = 0;
};

}  // namespace quenlar
