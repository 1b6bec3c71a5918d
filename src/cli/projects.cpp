// quenlar projects: the project list.

#include "cli/commands.h"
#include "cli/exit_status.h"
#include "cli/workplace.h"

namespace quenlar {
int Projects(Invocation& invocation) {
  const Result<Platform> platform = OpenHome(invocation);
  if (!platform.ok()) return invocation.Fail(platform.status());
  Settings settings;
  const auto names = LoadStored(platform.value().registry, settings);
  if (!names.ok()) return invocation.Fail(names.status());
  for (const std::string& name : names.value()) {
    if (!invocation.Print(name)) break;
  }
  return kExitDone;
}

}  // namespace quenlar
