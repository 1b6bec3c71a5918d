// quenlar addresses: what a collection holds.
#include <string>

#include "cli/commands.h"
#include "cli/exit_status.h"
#include "cli/load_suppression.h"
#include "cli/open_collection.h"
#include "cli/option_checks.h"
#include "cli/sighting_format.h"
#include "cli/workplace.h"
#include "collection/overview.h"
#include "engine/time_text.h"
#include "page/url_host.h"

namespace quenlar {
namespace {

Status PrintOverview(Console& console, CollectionReader& reader, const std::string& name,
                     const OverviewChoice& choice) {
  return WriteOverview(reader, name, choice, [&](std::string_view piece) { return console.Write(piece); });
}

// A site as collections have it: letters beyond ASCII coded. What is no name of a host stays, and no page lies there.
std::string StoredSite(const std::string& site, const Idna& idna) {
  std::string host;
  return AppendHost(site, idna, host) ? host : site;
}

}  // namespace

int Addresses(Invocation& invocation, const AddressesArguments& arguments) {
  const auto reader = OpenCollection(invocation, arguments.name);
  if (!reader.ok()) return invocation.Fail(reader.status());
  const Result<Platform> platform = OpenHome(invocation);
  if (!platform.ok()) return invocation.Fail(platform.status());
  Result<SuppressionList> suppression = LoadSuppression(invocation, platform.value());
  if (!suppression.ok()) return invocation.Fail(suppression.status());
  reader.value()->LeaveOut([&](std::string_view address) { return suppression.value().Keeps(address); });
  SightingChoice choice = arguments.choice;
  choice.site = StoredSite(choice.site, platform.value().idna);
  if (!arguments.since.empty()) choice.since = ParseTime(arguments.since);
  if (arguments.format == "html") {
    const Status written =
        PrintOverview(invocation.console(), *reader.value(), arguments.name, {choice, arguments.sources});
    return written.ok() ? kExitDone : invocation.Fail(written);
  }
  const AddressFormat format = FormatOf(arguments.format);
  const auto print = [&](const Sighting& sighting) {
    std::string line = FormatSighting(sighting, format);
    line.pop_back();  // Print adds it
    return invocation.Print(line);
  };
  const Status listed =
      arguments.sources ? reader.value()->Sightings(choice, print) : reader.value()->Addresses(choice, print);
  return listed.ok() ? kExitDone : invocation.Fail(listed);
}

}  // namespace quenlar
