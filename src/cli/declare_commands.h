// Declares the commands with their names, options and help. Usage, manual page and completions are made of that.
#pragma once

#include <functional>

#include "cli/invocation.h"

namespace CLI {
class App;
}

namespace quenlar {

// The work of a command. Returns the exit status. May pump.
using Command = std::function<int(Invocation&)>;

// Adds all commands to `root`. When the parser meets one, `chosen` becomes its work. Both must outlive the parsing.
//
// The commands and their help stand together in two sources, declare_commands.cpp and declare_collection_commands.cpp,
// and not beside the work of each, because the parser is one large header that takes seconds to compile.
void DeclareCommands(CLI::App& root, Command& chosen);

}  // namespace quenlar
