// quenlar projects: the project list.
#include <CLI/CLI.hpp>

#include "cli/exit_status.h"
#include "cli/verbs.h"
#include "cli/workplace.h"

namespace quenlar {
namespace {

int Projects(Invocation& invocation) {
  const Result<Platform> platform = invocation.system().Open(invocation.choice());
  if (!platform.ok()) {
    invocation.Say(platform.status().message() + " !");
    return kExitFailed;
  }
  Settings settings;
  for (const std::string& name : LoadStored(platform.value().registry, settings)) {
    if (!invocation.Print(name)) break;
  }
  return kExitDone;
}

}  // namespace

void DeclareProjects(CLI::App& root, Command& chosen) {
  CLI::App* verb = root.add_subcommand("projects", "List the projects, newest first");
  verb->footer(
      "One project a line, as `extract`, `report` and `delete` take it.\n\n"
      "Examples:\n"
      "  quenlar projects\n"
      "  quenlar projects | head -1");
  verb->callback([&chosen] { chosen = Projects; });
}

}  // namespace quenlar
