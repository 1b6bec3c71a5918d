// The commands as the command line knows them: names, options and help; usage, man page and completion come from that.
#pragma once

#include <functional>

#include "cli/invocation.h"

namespace CLI {
class App;
}

namespace quenlar {

// Does the work and returns the exit status. May pump.
using Command = std::function<int(Invocation&)>;

// Adds all commands to `root`; when the command line names one, `chosen` becomes its work. Both outlive the parsing.
void DeclareCommands(CLI::App& root, Command& chosen);

}  // namespace quenlar
