// quenlar demo: a small web on loopback, complete runs over it, and a collection, through the real transport.
#include <fmt/format.h>

#include "cli/collect_run.h"
#include "cli/commands.h"
#include "cli/demo_site.h"
#include "cli/exit_status.h"
#include "cli/extract_run.h"
#include "cli/paths.h"
#include "engine/collections.h"
#include "platform/files.h"
#include "settings/suppression_file.h"

namespace quenlar {
namespace {

// The run at hand, for a stop that comes between two runs as well as inside one.
struct StopRelay {
  std::function<void()> stop_run;
  bool stopped = false;
};

class Demonstration {
 public:
  Demonstration(Invocation& invocation, Workplace& place, const LoopbackServer& server)
      : invocation_(invocation), place_(place), server_(server) {}

  // The exit status.
  [[nodiscard]] int Run() {
    invocation_.system().OnStop([relay = relay_] {
      relay->stopped = true;
      if (relay->stop_run) relay->stop_run();
    });
    for (const char* text : {kDemoKeyword, kDemoAddress}) {
      if (relay_->stopped) return kExitStopped;
      if (const int status = RunProject(text); status != kExitDone) return status;
    }
    if (relay_->stopped) return kExitStopped;
    if (const int status = RunCollection(); status != kExitDone) return status;
    if (relay_->stopped) return kExitStopped;
    invocation_.Print("== What is where");
    return invocation_.console().Write(results_) ? kExitDone : kExitFailed;
  }

 private:
  [[nodiscard]] int RunProject(const char* text) {
    invocation_.Print(fmt::format("== quenlar extract \"{}\"", text));
    ExtractOptions options;
    options.text = text;
    options.assume_online = true;                        // the site is on this computer
    options.overrides = {{FindSetting("Export"), "1"}};  // all information
    const ExtractResult result = RunExtract(invocation_.console(), place_, options, WatchStop());
    results_ += fmt::format("{} addresses on {} pages: {}\n", result.addresses, result.scanned, result.report_file);
    return result.status;
  }

  // Where the server speaks TLS, over https with an authority that nobody else ever trusts.
  [[nodiscard]] int RunCollection() {
    Files& files = place_.platform.files;
    if (const Status suppressed = Suppress(files); !suppressed.ok()) return invocation_.Fail(suppressed);
    const std::string origin = (server_.authority().empty() ? "http://" : "https://") + std::string(kDemoHost);
    invocation_.Print(fmt::format("== quenlar collect {} --delay 0 --format csv", origin));
    CollectOptions options;
    options.starts = {origin};
    options.name = CollectionName(origin, options.crawl.language, place_.installation);
    options.crawl.delay = {};
    options.crawl.assume_online = true;
    options.crawl.contact = "https://societies.example/why";
    options.crawl.again = true;  // a folder may have seen the demonstration before
    options.format = AddressFormat::kCsv;
    const std::string& authorities = invocation_.choice().authorities;
    if (!authorities.empty()) {
      const Status written = WriteWhole(files, authorities, server_.authority());
      if (!written.ok()) return invocation_.Fail(written);
    }
    WebClient& client = invocation_.system().web_client();
    const CollectResult result = RunCollect(invocation_.console(), place_, client, options, WatchStop());
    if (!authorities.empty()) files.Delete(authorities).Ignore("its key is lost, so it vouches for nothing");
    if (result.status != kExitDone || relay_->stopped) return result.status;
    results_ += fmt::format("{} addresses on {} pages: {}\n", result.addresses, result.figures.pages,
                            CollectionPath(place_.installation, options.name));
    const std::string forbidden = origin + kDemoForbidden + "rare";
    invocation_.Print(fmt::format("== quenlar why {} {}", options.name, forbidden));
    return Why(invocation_, {options.name, forbidden});
  }

  [[nodiscard]] Status Suppress(Files& files) {
    invocation_.Print(fmt::format("== quenlar suppress {}", kDemoSuppressed));
    return ChangeSuppressionFile(files, place_.platform.idna, place_.installation, {kDemoSuppressed},
                                 [](std::string_view, std::string_view) { return false; })
        .status();
  }

  [[nodiscard]] std::function<void(std::function<void()>)> WatchStop() {
    return [relay = relay_](std::function<void()> stop) { relay->stop_run = std::move(stop); };
  }

  Invocation& invocation_;
  Workplace& place_;
  const LoopbackServer& server_;
  const std::shared_ptr<StopRelay> relay_ = std::make_shared<StopRelay>();
  std::string results_;
};

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
  if (!server.value()->authority().empty()) {
    choice.authorities = choice.home + invocation.system().separator() + "demo-authority.pem";
  }
  Result<Workplace> place = TakeWorkplace(invocation);
  if (!place.ok()) return invocation.Fail(place.status());
  place.value().installation.search_engine = kDemoSearchEngine;
  return Demonstration(invocation, place.value(), *server.value()).Run();
}

}  // namespace quenlar
