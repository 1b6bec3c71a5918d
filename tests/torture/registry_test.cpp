// Fails the n-th call into the settings registry, and all calls from the n-th on, of the window program from its start
// over a change of the options and a run to its end. Such a failure is silent by the interface's contract: what cannot
// be read counts as 0, what cannot be written is not there, and the program goes on.
#include "run/end_reasons.h"
#include "support/program_world.h"
#include "torture_world.h"

namespace quenlar {
namespace {

struct Life : ProgramWorld {
  Life() { ServeSite(fetcher); }

  void FromStartToEnd() {
    EXPECT_TRUE(program.Start());
    option.Show();
    option.chkCorrelation.UserClick();
    option.txtStopNumber.UserText("500");
    option.Close();
    RunProject("www.h.example");
    tray.mnuExit.Click();
  }
  // What holds whichever call fails.
  void ExpectNothingLost() {
    // Of the failure nothing is told; the dialog does say of a stop number of 0 that it is none.
    std::vector<std::string> told = boxes.texts();
    std::erase(told, "Please enter number between 1 and 99999 !");
    EXPECT_EQ(told, std::vector<std::string>{kEndAllParsed});
    EXPECT_EQ(MissingIn(files.Contents(kReport).value_or("")), "");
    EXPECT_EQ(engine.project_list.entries().front(), "www.h.example");
    EXPECT_EQ(engine.settings.StopNumber, 500) << "what is chosen holds, stored or not";
    EXPECT_EQ(ends, 1);
  }
};

// What earlier starts have left.
struct LaterLife : Life {
  LaterLife() {
    StoreProjects({"www.old.example", "www.older.example"});
    for (const char* name : {"Search", "Save", "Correlation", "Export", "RemoveFilter", "ExtractFilter"}) {
      Store(name, "1");
    }
    Store("RemoveFilter", "0");
    Store("ExtractFilter", "0");
  }
};

template <typename Case>
int FailEveryCall(FakeRegistry::Fails fails) {
  for (int n = 1;; ++n) {
    SCOPED_TRACE("call " + std::to_string(n) + " fails");
    Case test;
    test.registry.FailCall(n, fails);
    test.FromStartToEnd();
    test.ExpectNothingLost();
    if (testing::Test::HasFailure() || n > test.registry.calls()) return n - 1;
  }
}

template <typename Case>
void FailEveryCallOnceAndForGood(const char* what) {
  const int faults =
      FailEveryCall<Case>(FakeRegistry::Fails::kOnce) + FailEveryCall<Case>(FakeRegistry::Fails::kForGood);
  EXPECT_GT(faults, 40);
  TellFaults(what, static_cast<std::uint64_t>(faults));
}

TEST(Torture, AFirstStartSurvivesAFailureOfEveryCallToTheRegistry) {
  FailEveryCallOnceAndForGood<Life>("calls to the registry, from a first start to the end");
}

TEST(Torture, ALaterStartSurvivesAFailureOfEveryCallToTheRegistry) {
  FailEveryCallOnceAndForGood<LaterLife>("calls to the registry, from a later start to the end");
}

TEST(Torture, ASettingThatCannotBeReadIsZeroAndNothingIsWrittenOverIt) {
  const std::vector<std::string> stored = {"www.old.example", "www.older.example"};
  int n = 0, faults = 0;
  for (bool reached = true; reached; ++faults) {
    SCOPED_TRACE("call " + std::to_string(++n) + " fails");
    LaterLife test;
    const int changes = test.registry.changes();
    test.registry.FailCall(n, FakeRegistry::Fails::kOnce);
    ASSERT_TRUE(test.program.Start());
    reached = n <= test.registry.calls();
    EXPECT_EQ(test.registry.changes(), changes) << "a start that cannot read must not be taken for the first one";
    const Settings& settings = test.engine.settings;
    const int unread = (settings.SearchLanguage == 0) + (settings.SaveInterval == 0) + (settings.CorrelationMode == 0) +
                       (settings.ExportMode == 0) + (settings.NeverUpgradeFlag == 0) + (settings.StopNumber == 0);
    const auto& entries = test.engine.project_list.entries();
    const std::size_t names_unread = stored.size() - entries.size();
    EXPECT_LE(unread + (names_unread != 0 ? 1 : 0), 1) << "one failure costs one value";
    EXPECT_EQ(settings.EffectiveStopNumber(), 99999);
    for (const std::string& name : entries) EXPECT_TRUE(name == stored[0] || name == stored[1] || name.empty()) << name;
    test.registry.FailCall(0, FakeRegistry::Fails::kOnce);
    for (const std::string& name : stored) {
      EXPECT_TRUE(test.Stored("Project1") == name || test.Stored("Project2") == name);
    }
    EXPECT_TRUE(test.boxes.shown.empty());
  }
  TellFaults("calls to the registry, of a start", static_cast<std::uint64_t>(faults - 1));
}

}  // namespace
}  // namespace quenlar
