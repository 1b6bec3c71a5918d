#include "platform/win32/command_lines.h"

#include "base/ascii.h"

namespace quenlar::win32 {

std::string BrowserProgram(std::string_view command) {
  if (command.starts_with('"')) {
    command.remove_prefix(1);
    return std::string(TrimBlanks(command.substr(0, command.find('"'))));
  }
  return std::string(TrimBlanks(command.substr(0, command.find('-'))));
}

std::string EditorCommandLine(std::string_view system_directory, std::string_view path) {
  return std::string(system_directory).append("\\notepad.exe ").append(path);
}

}  // namespace quenlar::win32
