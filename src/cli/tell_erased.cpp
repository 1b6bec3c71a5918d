#include "cli/tell_erased.h"

#include <memory>
#include <string>

#include "cli/exit_status.h"
#include "cli/workplace.h"
#include "engine/erase.h"
#include "engine/never_list.h"

namespace quenlar {
int EraseAndTell(Invocation& invocation, const Platform& platform, const SuppressionList& list,
                 const std::string& subject) {
  const Installation installation = invocation.installation();
  const auto lock = TakeHome(platform.files, installation);
  if (!lock.ok() && lock.status().kind() != StatusKind::kBusy) return invocation.Fail(lock.status());
  const EraseOutcome outcome = EraseEverywhere(
      platform.files, installation, [&](std::string_view address) { return !list.EntryFor(address); },
      lock.ok() ? OtherWriters::kNone : OtherWriters::kPossible);
  invocation.Say(ErasedText(subject, outcome) + ".");
  for (const std::string& problem : outcome.problems) invocation.Say(problem + " !");
  return outcome.problems.empty() ? kExitDone : kExitFailed;
}

}  // namespace quenlar
