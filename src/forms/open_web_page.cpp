#include "forms/open_web_page.h"

#include "base/ascii.h"

namespace quenlar {
namespace {

// What could cut the address into several arguments or end it early.
std::string AsOneArgument(std::string_view address) {
  std::string result;
  for (const char c : address) {
    const auto byte = static_cast<unsigned char>(c);
    if (byte <= ' ' || byte == 127 || c == '"') {
      result += PercentCode(c);
    } else {
      result += c;
    }
  }
  return result;
}

}  // namespace

void OpenWebPage(Shell& shell, std::string_view address) {
  const auto command = shell.HttpOpenCommand();
  if (!command) return;
  const std::string program = BrowserProgram(*command);
  if (program.empty()) return;
  if (ContainsIgnoreCase(address, "http://") || ContainsIgnoreCase(address, "https://")) {
    shell.Open(program, AsOneArgument(address));
  } else {
    shell.Open(program, "file:///" + AsOneArgument(ReplaceAll(address, "\\", "/")));
  }
}

std::string BrowserProgram(std::string_view command) {
  if (command.starts_with('"')) {
    command.remove_prefix(1);
    return std::string(TrimBlanks(command.substr(0, command.find('"'))));
  }
  return std::string(TrimBlanks(command.substr(0, command.find('-'))));
}

}  // namespace quenlar
