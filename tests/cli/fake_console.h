// The standard streams of a command line in memory.
#pragma once

#include <algorithm>
#include <cstring>
#include <optional>
#include <string>

#include "cli/system.h"

namespace quenlar {

class FakeConsole : public Console {
 public:
  std::string output, errors, input;
  std::size_t largest_read = SIZE_MAX;
  std::optional<char> endless;  // behind `input` come this many of these
  std::size_t read_limit = 0;
  std::optional<std::size_t> readers_patience;  // the reader goes away after so many writes
  bool output_is_full = false;
  bool input_is_terminal = false, output_is_terminal = false, error_is_terminal = false;
  int columns = 80;

  bool Write(std::string_view bytes) override {
    gone_ = gone_ || output_is_full;
    if (readers_patience && (*readers_patience)-- == 0) readers_patience = 0, gone_ = true;
    if (!gone_) output += bytes;
    return !gone_;
  }
  [[nodiscard]] bool OutputIsFull() const override { return output_is_full; }
  void WriteError(std::string_view bytes) override { errors += bytes; }
  std::size_t Read(char* buffer, std::size_t size) override {
    size = std::min(size, largest_read);
    if (at_ < input.size()) {
      size = std::min(size, input.size() - at_);
      std::memcpy(buffer, input.data() + at_, size);
      at_ += size;
      return size;
    }
    size = endless ? std::min(size, read_limit - endless_read_) : 0;
    if (size != 0) std::memset(buffer, *endless, size);
    endless_read_ += size;
    return size;
  }
  [[nodiscard]] bool InputIsTerminal() const override { return input_is_terminal; }
  [[nodiscard]] bool OutputIsTerminal() const override { return output_is_terminal; }
  [[nodiscard]] bool ErrorIsTerminal() const override { return error_is_terminal; }
  [[nodiscard]] int ErrorColumns() const override { return columns; }

 private:
  std::size_t at_ = 0, endless_read_ = 0;
  bool gone_ = false;
};

}  // namespace quenlar
