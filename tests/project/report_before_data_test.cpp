#include <gtest/gtest.h>

#include "project/project_store.h"
#include "support/fake_platform.h"
#include "support/recording_view.h"

namespace quenlar {
namespace {

class NoProjectView : public ProjectView {
 public:
  void EnableDelete(bool) override {}
  void EnableExport(bool) override {}
  void EnableExtract() override {}
  bool Ready() const override { return false; }
  void SetInputText(const std::string&) override {}
};

class ReportBeforeData : public testing::Test {
 protected:
  ReportBeforeData() {
    site_.program_folder = "/home";
    fakes_.files.AddFolder("/home/data");
    fakes_.files.AddFolder("/home/report");
    store_.OpenProject("h.example");
  }
  void Find(const char* address) { project_.found.Add({"http://www.h.example", address, "", false}); }
  std::string Report() { return fakes_.files.Contents(project_.ReportFile).value_or("(none)"); }

  FakePlatform fakes_;
  Project project_;
  Settings settings_;
  Site site_;
  RecordingView view_;
  NoProjectView project_view_;
  ProjectStore store_{fakes_.platform, project_, settings_, site_, view_, project_view_};
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

TEST_F(ReportBeforeData, AReportThatCannotBeWrittenDoesNotKeepTheDataFileBack) {
  Find("a@h.example.org");
  fakes_.files.Protect("/home/report");
  EXPECT_TRUE(store_.WriteData().ok());
  EXPECT_TRUE(fakes_.files.FileExists(project_.DataFile));
}

}  // namespace
}  // namespace quenlar
