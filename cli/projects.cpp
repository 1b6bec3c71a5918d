// quenlar projects: the project list.

#include "cli/commands.h"
#include "cli/exit_status.h"
#include "cli/workplace.h"

namespace quenlar {
int Projects(Invocation& invocation) {
  const Result<Platform> platform = OpenHome(invocation);
  if (!platform.ok()) return invocation.Fail(platform.status());
  Settings settings;
  for (const std::string& name : LoadStored(platform.value().registry, settings)) {
    if (!invocation.Print(name)) break;
  }
  return kExitDone;
}

}  // namespace quenlar
