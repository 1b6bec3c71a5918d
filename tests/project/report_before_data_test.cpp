#include <functional>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "project/project_store.h"
#include "support/fake_platform.h"
#include "support/recording_view.h"

namespace quenlar {
namespace {

class ReportBeforeData : public testing::Test {
 protected:
  ReportBeforeData() {
    installation_.program_folder = "/home";
    fakes_.files.AddFolder("/home/data");
    fakes_.files.AddFolder("/home/report");
    store_.OpenProject("h.example");
  }
  void Find(const char* address) { project_.found.Add({"http://www.h.example", address, "", false}); }
  // A page that was visited while the program was pumped: its addresses, and the end of its link.
  void Visit(std::uint32_t link, const char* address) {
    Find(address);
    project_.queues[0].Finish(link);
  }
  void AddLinksInFlight(std::initializer_list<const char*> urls) {
    for (const char* url : urls) project_.queues[0].AddIfNew(url);
    while (project_.queues[0].Next() < project_.queues[0].Count()) project_.queues[0].StartNext();
  }
  // Calls each of these in a pump of its own, one after the other.
  void InPumps(std::vector<std::function<void()>> steps) {
    fakes_.loop.OnPump([this, steps = std::move(steps)] {
      if (step_ < steps.size()) steps[step_++]();
    });
  }
  // The link or the address of a page must be on the disk, or both.
  void ExpectOnDisk(const std::string& link, const std::string& address) {
    EXPECT_TRUE(Data().find(link) != std::string::npos || Report().find(address) != std::string::npos) << address;
  }
  std::string Data() { return fakes_.files.Contents(project_.DataFile).value_or("(none)"); }
  std::string Report() { return fakes_.files.Contents(project_.ReportFile).value_or("(none)"); }

  std::size_t step_ = 0;
  FakePlatform fakes_;
  Project project_;
  Settings settings_;
  Installation installation_;
  RecordingView view_;
  ProjectView project_view_;
  ProjectStore store_{fakes_.platform, project_, settings_, installation_, view_, project_view_, Pump::Pace::kAlways};
};

TEST_F(ReportBeforeData, ADataFileNeverDropsALinkWhoseAddressesAreNotYetInTheReport) {
  Find("a@h.example.org");
  store_.SaveProjectData();  // a program that dies now has lost nothing
  EXPECT_NE(Report().find("a@h.example.org"), std::string::npos);
}

TEST_F(ReportBeforeData, ThePeriodicReportIsNotWrittenTwice) {
  Find("a@h.example.org");
  fakes_.files.FailCall(0);
  store_.SaveProjectData();
  const int calls = fakes_.files.calls();
  store_.SaveProjectReport();
  EXPECT_EQ(fakes_.files.calls(), calls);
  Find("b@h.example.org");
  store_.SaveProjectReport();
  EXPECT_NE(Report().find("b@h.example.org"), std::string::npos);
}

TEST_F(ReportBeforeData, AProjectWithoutAddressesGetsNoReport) {
  store_.SaveProjectData();
  EXPECT_EQ(Report(), "(none)");
}

TEST_F(ReportBeforeData, AReportThatCannotBeWrittenKeepsTheDataFileAsItWas) {
  AddLinksInFlight({"http://first", "http://second"});
  store_.SaveProjectData();
  const std::string before = Data();
  Visit(0, "first@h.example.org");
  fakes_.files.Protect("/home/report");
  const Status saved = store_.WriteData();
  EXPECT_FALSE(saved.ok());
  EXPECT_NE(saved.message().find("h_example.rpt cannot be saved"), std::string::npos) << saved.message();
  EXPECT_EQ(Data(), before);
  EXPECT_EQ(fakes_.files.AllFiles().size(), 1u) << "nothing is left of a save that was given up";
}

TEST_F(ReportBeforeData, AReportThatCannotBeWrittenAtTheProgramsEndKeepsTheDataFileAsItWas) {
  AddLinksInFlight({"http://first", "http://second"});
  store_.SaveProjectData();
  const std::string before = Data();
  Visit(0, "first@h.example.org");
  fakes_.files.Protect("/home/report");
  store_.SaveAtOnce();
  EXPECT_EQ(Data(), before);
}

TEST_F(ReportBeforeData, ARunWithMoreAddressesThanAReportHoldsCanBeContinued) {
  AddLinksInFlight({"http://first", "http://second"});
  Visit(0, "first@h.example.org");
  for (int i = 0; i < 32768; ++i) Find((std::to_string(i) + "@h.example.org").c_str());
  EXPECT_TRUE(store_.WriteData().ok());
  EXPECT_EQ(store_.WriteReport().message(), "Overflow !");
  EXPECT_EQ(Data().find("http://first"), std::string::npos);
  EXPECT_NE(Data().find("http://second"), std::string::npos);
}

// --- Pages that end while something is saved ---

TEST_F(ReportBeforeData, APageThatEndsWhileTheReportIsWrittenForADataFileKeepsItsLink) {
  settings_.ExportMode = 1;
  AddLinksInFlight({"http://first", "http://second"});
  Visit(0, "first@h.example.org");
  InPumps({[this] { Visit(1, "second@h.example.org"); }});
  store_.SaveProjectData();
  ExpectOnDisk("http://first", "first@h.example.org");
  ExpectOnDisk("http://second", "second@h.example.org");
}

TEST_F(ReportBeforeData, ADataFileThatIsSavedInsideASaveOfTheReportComesBehindTheReport) {
  settings_.ExportMode = 1;
  AddLinksInFlight({"http://first", "http://second"});
  Visit(0, "first@h.example.org");
  int saved = 0;
  InPumps({[&] {
    Visit(1, "second@h.example.org");
    store_.SaveProjectData();
    ExpectOnDisk("http://first", "first@h.example.org");
    ExpectOnDisk("http://second", "second@h.example.org");
    EXPECT_EQ(Data().find("http://second"), std::string::npos) << "it was done when the save began";
    ++saved;
  }});
  store_.SaveProjectReport();
  EXPECT_EQ(saved, 1);
  EXPECT_NE(Report().find("second@h.example.org"), std::string::npos);
}

TEST_F(ReportBeforeData, ADataFileThatIsSavedOnceMoreComesBehindTheReportOnceMore) {
  AddLinksInFlight({"http://first", "http://second", "http://third"});
  Visit(0, "first@h.example.org");
  int calls = 0;
  InPumps({[&] {
             ++calls;
             store_.SaveProjectData();
             store_.SaveProjectReport();
           },
           [&] {
             ++calls;
             Visit(1, "second@h.example.org");
           }});
  store_.SaveProjectData();
  EXPECT_EQ(calls, 2);
  EXPECT_EQ(Data().find("http://second"), std::string::npos);
  ExpectOnDisk("http://first", "first@h.example.org");
  ExpectOnDisk("http://second", "second@h.example.org");
}

TEST_F(ReportBeforeData, AProjectThatIsOpenedWhileItIsSavedLeavesBothFilesAsOneSaveWould) {
  settings_.ExportMode = 1;
  AddLinksInFlight({"http://first", "http://second"});
  Visit(0, "first@h.example.org");
  const std::string data = project_.DataFile, report = project_.ReportFile;
  InPumps({[this] { store_.OpenProject("other.example"); }});
  store_.SaveProjectData();
  EXPECT_EQ(fakes_.files.Contents(data).value_or("").find("http://first"), std::string::npos);
  EXPECT_NE(fakes_.files.Contents(data).value_or("").find("http://second"), std::string::npos);
  EXPECT_NE(fakes_.files.Contents(report).value_or("").find("first@h.example.org"), std::string::npos);
}

TEST_F(ReportBeforeData, ADataFileThatIsGivenUpIsNotWrittenForTheNextProject) {
  settings_.ExportMode = 1;
  AddLinksInFlight({"http://first", "http://second"});
  Visit(0, "first@h.example.org");
  InPumps({[this] {
    store_.SaveProjectData();  // once more, after the one that is under way
    fakes_.files.SetFreeSpace(0);
    store_.OpenProject("other.example");
    fakes_.files.SetFreeSpace(1 << 20);
  }});
  store_.SaveProjectData();
  EXPECT_FALSE(fakes_.files.FileExists(project_.DataFile));
}

}  // namespace
}  // namespace quenlar
