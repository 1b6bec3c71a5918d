// The standard streams of a Windows console program.
#pragma once

#include "platform/console.h"

namespace quenlar {

// A file or a pipe gets the bytes as they are. A console gets the characters that the UTF-8 spells.
class Win32Console final : public Console {
 public:
  Win32Console();

  [[nodiscard]] bool Write(std::string_view bytes) override;
  [[nodiscard]] bool OutputIsFull() const override { return full_; }
  void WriteError(std::string_view bytes) override;
  [[nodiscard]] std::size_t Read(char* buffer, std::size_t size) override;

  [[nodiscard]] bool InputIsTerminal() const override;
  [[nodiscard]] bool OutputIsTerminal() const override;
  // False for a console that does not understand escape sequences.
  [[nodiscard]] bool ErrorIsTerminal() const override { return error_understands_escapes_; }
  [[nodiscard]] int ErrorColumns() const override;

 private:
  bool gone_ = false;  // a write to standard output has failed
  bool full_ = false;  // because there was no space left
  bool error_understands_escapes_ = false;
};

}  // namespace quenlar
