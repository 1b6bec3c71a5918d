// The standard streams over their file descriptors.
#pragma once

#include "platform/console.h"

namespace quenlar {

// A standard stream that is closed when the process starts is kept from becoming some other file: it counts as one that
// is at its end, or that nobody reads. So one is made first of all.
class PosixConsole : public Console {
 public:
  PosixConsole();

  [[nodiscard]] bool Write(std::string_view bytes) override;
  [[nodiscard]] bool OutputIsFull() const override { return full_; }
  void WriteError(std::string_view bytes) override;
  [[nodiscard]] std::size_t Read(char* buffer, std::size_t size) override;

  [[nodiscard]] bool OutputIsTerminal() const override;
  [[nodiscard]] bool ErrorIsTerminal() const override;
  [[nodiscard]] int ErrorColumns() const override;

 private:
  bool gone_ = false;  // a write to standard output has failed
  bool full_ = false;  // for want of space
};

}  // namespace quenlar
