// The standard streams over their file descriptors.
#pragma once

#include "platform/console.h"

namespace quenlar {

// Make the console before anything opens a file. It occupies standard streams that were closed when the process
// started, so that no other file takes their numbers. Such an input is at its end, and such an output has no reader.
class PosixConsole : public Console {
 public:
  PosixConsole();

  [[nodiscard]] bool Write(std::string_view bytes) override;
  [[nodiscard]] bool OutputIsFull() const override { return full_; }
  void WriteError(std::string_view bytes) override;
  [[nodiscard]] std::size_t Read(char* buffer, std::size_t size) override;

  [[nodiscard]] bool InputIsTerminal() const override;
  [[nodiscard]] bool OutputIsTerminal() const override;
  [[nodiscard]] bool ErrorIsTerminal() const override;
  [[nodiscard]] int ErrorColumns() const override;

 private:
  bool gone_ = false;  // a write to standard output has failed
  bool full_ = false;  // because there was no space left
};

}  // namespace quenlar
