// The commands. Each declares its name, its options and its help once; usage, man page and completion come from that.
#pragma once

#include <functional>

#include "cli/invocation.h"

namespace CLI {
class App;
}

namespace quenlar {

// Does the work and returns the exit status. May pump.
using Command = std::function<int(Invocation&)>;

// Each adds one command to `root`; when the command line names it, `chosen` becomes its work.
void DeclareExtract(CLI::App& root, Command& chosen);
void DeclareAnalyze(CLI::App& root, Command& chosen);
void DeclareProjects(CLI::App& root, Command& chosen);
void DeclareDelete(CLI::App& root, Command& chosen);
void DeclareReport(CLI::App& root, Command& chosen);
void DeclareMerge(CLI::App& root, Command& chosen);
void DeclareOptions(CLI::App& root, Command& chosen);
void DeclareFilter(CLI::App& root, Command& chosen);
void DeclareNet(CLI::App& root, Command& chosen);
void DeclareDemo(CLI::App& root, Command& chosen);
void DeclareDescribe(CLI::App& root, Command& chosen);

}  // namespace quenlar
