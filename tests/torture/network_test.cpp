// Lets the network fail at every instant of a keyword run with a redirect and the upgrade check in it: the n-th thing
// that a download tells (its redirect, its first bytes, its whole body) is an error instead; or nothing comes of that
// download any more; or the computer is off line from there on.
#include "run/end_reasons.h"
#include "torture_world.h"

namespace quenlar {
namespace {

enum class Fault { kError, kSilence, kOffLine };

// Passes the calls of a fetcher on and breaks the n-th notification.
class FailingFetcher final : public PageFetcher, private FetchListener {
 public:
  FailingFetcher(ScriptedFetcher& fetcher, FakeInterfaceTable& interfaces)
      : fetcher_(fetcher), interfaces_(interfaces) {}
  FailingFetcher(const FailingFetcher&) = delete;
  FailingFetcher& operator=(const FailingFetcher&) = delete;

  void FailCall(int n, Fault fault) {
    failing_call_ = n;
    fault_ = fault;
  }
  [[nodiscard]] bool reached() const { return calls_ >= failing_call_; }
  [[nodiscard]] const std::string& broken() const { return broken_; }  // the key of that download

  void SetListener(FetchListener* listener) override {
    listener_ = listener;
    fetcher_.SetListener(listener == nullptr ? nullptr : this);
  }
  void Start(const std::string& address, const std::string& key) override {
    if (key == dead_) dead_.clear();  // asked for again
    fetcher_.Start(address, key);
  }
  void Cancel(const std::string& key) override { fetcher_.Cancel(key); }

 private:
  void OnFetchProgress(const std::string& key, FetchCode code, const std::string& text) override {
    if (!Breaks(key)) listener_->OnFetchProgress(key, code, text);
  }
  void OnFetchComplete(const std::string& key, std::string body) override {
    if (!Breaks(key)) listener_->OnFetchComplete(key, std::move(body));
  }
  bool Breaks(const std::string& key) {
    if (key == dead_) return true;
    if (++calls_ != failing_call_) return false;
    if (fault_ == Fault::kOffLine) {
      interfaces_.alive = false;
      return false;
    }
    broken_ = dead_ = key;
    if (fault_ == Fault::kError) {
      fetcher_.Cancel(key);
      listener_->OnFetchProgress(key, FetchCode::kError, "");
    }
    return true;
  }

  ScriptedFetcher& fetcher_;
  FakeInterfaceTable& interfaces_;
  FetchListener* listener_ = nullptr;
  int calls_ = 0, failing_call_ = 0;
  Fault fault_ = Fault::kError;
  std::string broken_, dead_;
};

struct Net {
  FakePlatform fakes;
  FailingFetcher fetcher{fakes.fetcher, fakes.interfaces};
  Messages front;
  ProjectView project_view;
  Engine engine{WithFetcher(), World::MakeInstallation(), {front, front, project_view}};
  int newer_versions = 0;

  Net() {
    fakes.files.AddFolder("/home/data");
    fakes.files.AddFolder("/home/report");
    ServeSearch(fakes.fetcher);
    // Pages take their time, so that the alarm ticks in between.
    const auto serve = [this](const std::string& address, std::string body, std::vector<std::string> redirects = {}) {
      fakes.fetcher.Serve(address, ScriptedAnswer{.body = std::move(body),
                                                  .redirects = std::move(redirects),
                                                  .delay = std::chrono::milliseconds(400)});
    };
    serve("http://www.h.example", StartPage(), {"http://www.h.example/p0.html"});
    for (int i = 0; i < kPages; ++i) serve("http://www.h.example/p" + std::to_string(i) + ".html", Page(i));
    serve(kUpgradePage, "99.0\r\n");
    engine.OnNewerVersion([this] { ++newer_versions; });
  }
  [[nodiscard]] Platform WithFetcher() {
    const Platform& p = fakes.platform;
    return {p.loop,  fetcher, p.registry, p.interfaces, p.files,       p.code_page,
            p.clock, p.shell, p.boxes,    p.idna,       p.text_decoder};
  }
  // With the alarm's ticks before it. The first tick asks for the upgrade page.
  void Run() {
    engine.projects.OpenProject("picture_en");
    const auto alarm = fakes.loop.MakeTimer(std::chrono::seconds(1), [this] { engine.watchdog.Tick(); });
    alarm->SetEnabled(true);
    engine.driver.Run();
    fakes.loop.Advance(std::chrono::seconds(1));
  }
  [[nodiscard]] std::string Report() const { return fakes.files.Contents("/home/report/picture_en.rpt").value_or(""); }
};

// The addresses of the page whose download has failed.
std::string AddressesOf(const std::string& key) {
  std::string addresses;
  for (int i = 0; i < kPages; ++i) {
    if (!key.ends_with("/p" + std::to_string(i) + ".html")) continue;
    for (int k = 0; k < kAddresses; ++k) addresses += Address(i, k) + "\n";
  }
  return addresses;
}

void FailEveryNotification(Fault fault, const char* what) {
  for (int n = 1;; ++n) {
    SCOPED_TRACE("notification " + std::to_string(n));
    Net net;
    net.fetcher.FailCall(n, fault);
    net.Run();
    const std::string& broken = net.fetcher.broken();
    const bool is_upgrade = broken.starts_with('U'), is_site = broken.ends_with("www.h.example");
    ExpectWholeFiles(net.fakes.files, "/home/data/picture_en.dat", "/home/report/picture_en.rpt");
    const bool off_line = !net.fakes.interfaces.alive;
    ASSERT_EQ(net.front.ends.size(), 1u);
    // A run can be over before the tick that would have seen that the network is gone.
    EXPECT_TRUE(net.front.ends[0] == kEndAllParsed || (off_line && net.front.ends[0] == kEndOffLine));
    EXPECT_TRUE(net.front.failures.empty());
    EXPECT_FALSE(net.engine.run.running);
    EXPECT_TRUE(net.engine.web.pending().empty());
    if (fault != Fault::kOffLine) {
      EXPECT_EQ(net.newer_versions, is_upgrade ? 0 : 1);
      EXPECT_EQ(net.front.Staged("Some errors occured ..."), fault == Fault::kError && !broken.empty());
      // A page that fails costs what stands on it and behind it, and nothing else; a search page is asked for again.
      EXPECT_TRUE(is_site || MissingIn(net.Report()) == AddressesOf(broken)) << MissingIn(net.Report());
    } else if (off_line) {
      // The project goes on from there.
      Net next;
      CopyFiles(net.fakes.files, next.fakes.files);
      next.Run();
      EXPECT_EQ(MissingIn(next.Report()), "");
    }
    if (testing::Test::HasFailure()) return;
    if (net.fetcher.reached()) continue;
    EXPECT_GT(n, 2 * kPages);
    return TellFaults(what, static_cast<std::uint64_t>(n - 1));
  }
}

TEST(Torture, ARunSurvivesAnErrorAtEveryInstantOfItsDownloads) {
  FailEveryNotification(Fault::kError, "errors, at every instant of a run's downloads");
}

TEST(Torture, ARunSurvivesADownloadThatFallsSilentAtEveryInstant) {
  FailEveryNotification(Fault::kSilence, "downloads that fall silent, at every instant of a run");
}

TEST(Torture, ARunThatTheNetworkLeavesAtEveryInstantIsContinuedWithoutLoss) {
  FailEveryNotification(Fault::kOffLine, "ends of the network, at every instant of a run");
}

}  // namespace
}  // namespace quenlar
