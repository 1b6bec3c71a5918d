// quenlar projects: the project list.

#include "cli/commands.h"
#include "cli/exit_status.h"
#include "cli/workplace.h"

namespace quenlar {
int Projects(Invocation& invocation) {
  const Result<Platform> platform = OpenHome(invocation);
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

}  // namespace quenlar
