// The standard streams of a program that is run from a terminal or a script.
#pragma once

#include <cstddef>
#include <string_view>

namespace quenlar {

// The three standard streams. Bytes pass as they are (UTF-8, no translation of line ends).
class Console {
 public:
  virtual ~Console() = default;

  // Results. Written through at once; false when nobody reads them any more, from then on every call gives false.
  [[nodiscard]] virtual bool Write(std::string_view bytes) = 0;
  // Whether such a failure is not the reader's doing: there is no space left behind standard output.
  [[nodiscard]] virtual bool OutputIsFull() const = 0;
  // Messages and progress. A failure is of no interest: there is nowhere left to tell it.
  virtual void WriteError(std::string_view bytes) = 0;
  // Blocks for input; the bytes read, 0 at its end.
  [[nodiscard]] virtual std::size_t Read(char* buffer, std::size_t size) = 0;

  [[nodiscard]] virtual bool OutputIsTerminal() const = 0;
  [[nodiscard]] virtual bool ErrorIsTerminal() const = 0;
  // Characters in a line of the terminal behind standard error.
  [[nodiscard]] virtual int ErrorColumns() const = 0;
};

}  // namespace quenlar
