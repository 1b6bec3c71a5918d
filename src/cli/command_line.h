// The command line as a whole: reads the arguments and runs the command that they name.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "cli/system.h"
#include "cli/verbs.h"

namespace quenlar {

// `arguments` without the program's name, UTF-8. Returns the exit status; pumps while the command works.
[[nodiscard]] int RunCommandLine(System& system, std::vector<std::string> arguments);

// All commands and options. The declaration refers to the members, so they stay together.
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
