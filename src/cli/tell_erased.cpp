#include "cli/tell_erased.h"

#include <memory>
#include <string>

#include <fmt/format.h>

#include "cli/exit_status.h"
#include "cli/workplace.h"

namespace quenlar {
namespace {

std::string Counted(std::size_t count, const char* one, const char* many) {
  return fmt::format("{} {}", count, count == 1 ? one : many);
}

}  // namespace

int EraseAndTell(Invocation& invocation, const Platform& platform, const SuppressionList& list,
                 const std::string& subject) {
  const Installation installation = invocation.installation();
  const auto lock = TakeHome(platform.files, installation);
  if (!lock.ok() && lock.status().kind() != StatusKind::kBusy) return invocation.Fail(lock.status());
  const EraseOutcome outcome = EraseEverywhere(
      platform.files, installation, [&](std::string_view address) { return !list.EntryFor(address); },
      lock.ok() ? OtherWriters::kNone : OtherWriters::kPossible);
  if (outcome.collections == 0 && outcome.files == 0) {
    invocation.Say(subject + ": no collection and no report holds anything of it.");
  } else {
    invocation.Say(fmt::format("{}: {} taken out of {} and {}.", subject,
                               Counted(outcome.addresses.size(), "address", "addresses"),
                               Counted(outcome.collections, "collection", "collections"),
                               Counted(outcome.files, "file of projects", "files of projects")));
  }
  for (const std::string& problem : outcome.problems) invocation.Say(problem + " !");
  return outcome.problems.empty() ? kExitDone : kExitFailed;
}

}  // namespace quenlar
