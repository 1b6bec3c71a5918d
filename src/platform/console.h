// The standard streams of a program that is run from a terminal or a script.
#pragma once

#include <cstddef>
#include <string_view>

namespace quenlar {

// The three standard streams. Bytes pass as they are (UTF-8, no translation of line ends).
class Console {
 public:
  virtual ~Console() = default;

  // Writes results to standard output, at once and without a buffer. Returns false when they cannot be written, and
  // then at every later call: the reader has gone away, or there is no space left (see OutputIsFull).
  [[nodiscard]] virtual bool Write(std::string_view bytes) = 0;
  // Whether Write has failed because there was no space left.
  [[nodiscard]] virtual bool OutputIsFull() const = 0;
  // Writes messages and progress to standard error. A failure is ignored, because there is nowhere left to report it.
  virtual void WriteError(std::string_view bytes) = 0;
  // Reads up to `size` bytes of standard input. Blocks until some have come. Returns their number, 0 at the end.
  [[nodiscard]] virtual std::size_t Read(char* buffer, std::size_t size) = 0;

  // Whether a person can be asked.
  [[nodiscard]] virtual bool InputIsTerminal() const = 0;
  [[nodiscard]] virtual bool OutputIsTerminal() const = 0;
  [[nodiscard]] virtual bool ErrorIsTerminal() const = 0;
  // The width of the terminal behind standard error, in characters.
  [[nodiscard]] virtual int ErrorColumns() const = 0;
};

}  // namespace quenlar
