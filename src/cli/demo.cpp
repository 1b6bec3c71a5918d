// quenlar demo: a small web site on loopback and complete runs over it, through the real transport.
#include <fmt/format.h>

#include "cli/commands.h"
#include "cli/demo_site.h"
#include "cli/exit_status.h"
#include "cli/extract_run.h"
#include "cli/paths.h"

namespace quenlar {
namespace {

// The run at hand, for a stop that comes between two runs as well as inside one.
struct StopRelay {
  std::function<void()> stop_run;
  bool stopped = false;
};

int RunProjects(Invocation& invocation, Workplace& place) {
  const auto relay = std::make_shared<StopRelay>();
  invocation.system().OnStop([relay] {
    relay->stopped = true;
    if (relay->stop_run) relay->stop_run();
  });
  std::string reports;
  for (const char* text : {kDemoKeyword, kDemoAddress}) {
    if (relay->stopped) break;
    invocation.Print(fmt::format("== quenlar extract \"{}\"", text));
    ExtractOptions options;
    options.text = text;
    options.assume_online = true;                        // the site is on this computer
    options.overrides = {{FindSetting("Export"), "1"}};  // all information
    const ExtractResult result = RunExtract(invocation.console(), place, options,
                                            [&](std::function<void()> stop) { relay->stop_run = std::move(stop); });
    if (result.status != kExitDone) return result.status;
    reports += fmt::format("{} addresses on {} pages: {}\n", result.addresses, result.scanned, result.report_file);
  }
  if (relay->stopped) return kExitStopped;
  invocation.Print("== The reports");
  return invocation.console().Write(reports) ? kExitDone : kExitFailed;
}

}  // namespace

int Demo(Invocation& invocation) {
  const auto server = invocation.system().Serve([](const ServedRequest& request) { return DemoAnswer(request.url); });
  if (!server.ok()) return invocation.Fail(server.status());
  PlatformChoice& choice = invocation.choice();
  choice.proxy = fmt::format("http://127.0.0.1:{}", server.value()->port());
  if (!choice.home_given) {
    choice.home = MakeTemporaryFolder("quenlar-demo");
    choice.home_given = true;
  }
  Result<Workplace> place = TakeWorkplace(invocation);
  if (!place.ok()) return invocation.Fail(place.status());
  place.value().installation.search_engine = kDemoSearchEngine;
  return RunProjects(invocation, place.value());
}

}  // namespace quenlar
