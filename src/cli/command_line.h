// The command line as a whole: reads the arguments and runs the command that they name.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "cli/declare_commands.h"
#include "cli/system.h"

namespace quenlar {

// Runs the command that `arguments` name (UTF-8, without the program's name) and returns the exit status. Pumps while
// the command works.
[[nodiscard]] int RunCommandLine(System& system, std::vector<std::string> arguments);

// The declaration of all commands and options. The parser writes into the members, so all of them live together.
struct CommandLine {
  CommandLine();
  ~CommandLine();
  CommandLine(const CommandLine&) = delete;
  CommandLine& operator=(const CommandLine&) = delete;

  std::string home;  // --home
  Command chosen;
  std::unique_ptr<CLI::App> root;
};

}  // namespace quenlar
