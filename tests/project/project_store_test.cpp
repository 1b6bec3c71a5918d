#include "project/project_store.h"

#include <gmock/gmock.h>

#include "support/fake_platform.h"
#include "support/recording_view.h"

namespace quenlar {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using Texts = std::vector<std::string>;

const std::string kHeader = "Brenvy Quenlar Pro, http://www.quenlar.example\r\n";
constexpr const char* kCarsData = "/q/data/cars_en.dat";
constexpr const char* kCarsReport = "/q/report/cars_en.rpt";

// A window that writes everything down in one list, in order.
class Window : public RecordingView, public ProjectView {
 public:
  Texts log;
  std::function<void(const std::string& text)> input_changed;

  void ShowStage(const std::string& text) override {
    RecordingView::ShowStage(text);
    log.push_back("stage " + text);
  }
  void ShowAddressCount(std::uint32_t count) override {
    RecordingView::ShowAddressCount(count);
    log.push_back(address_count);
  }
  void ShowScanCount(std::int64_t count) override {
    RecordingView::ShowScanCount(count);
    log.push_back(scan_count);
  }
  void AddRow(std::uint32_t index, bool red) override {
    RecordingView::AddRow(index, red);
    log.push_back("row " + std::to_string(index) + (red ? " red" : ""));
  }
  void ClearRows() override {
    RecordingView::ClearRows();
    log.push_back("clear");
  }
  void ProjectClosed() override { log.emplace_back("closed"); }
  void ProjectFiles(bool has_data, bool has_report) override {
    log.push_back(std::string("files:") + (has_data ? " data" : "") + (has_report ? " report" : ""));
  }
  void ProjectReady() override { log.emplace_back("ready"); }
  void InputText(const std::string& text) override {
    log.push_back("input " + text);
    if (input_changed) input_changed(text);
  }
};

class ProjectStoreTest : public testing::Test {
 protected:
  ProjectStoreTest() {
    installation.program_folder = "/q";
    fakes.files.AddFolder("/q/data");
    fakes.files.AddFolder("/q/report");
    window.input_changed = [this](const std::string& text) { store.OpenProject(text); };
  }

  static Texts All(const LinkQueue& queue) {
    Texts urls;
    for (std::uint32_t i = 0; i < queue.Count(); ++i) urls.emplace_back(queue.At(i).URL);
    return urls;
  }
  Texts Addresses() {
    Texts addresses;
    for (std::uint32_t i = 0; i < project.found.Count(); ++i) addresses.emplace_back(project.found.At(i).Address);
    return addresses;
  }
  void PutCars(int addresses = 2) {
    fakes.files.Put(kCarsData, kHeader + "[M]\r\nhttp://m\r\n");
    std::string report;
    for (int i = 0; i < addresses; ++i) report += std::to_string(i) + "@cars.com\r\n";
    fakes.files.Put(kCarsReport, report);
  }
  std::string Contents(const std::string& path) { return fakes.files.Contents(path).value_or("nothing"); }
  // Runs once, inside the n-th pump from now on.
  void AtPump(int n, std::function<void()> handler) {
    pumps_left = n;
    fakes.loop.OnPump([this, handler = std::move(handler)] {
      if (--pumps_left == 0) handler();
    });
  }

  int pumps_left = 0;
  FakePlatform fakes;
  Project project;
  Settings settings;
  Installation installation;
  Window window;
  ProjectStore store{fakes.platform, project, settings, installation, window, window, Pump::Pace::kAlways};
};

// ---- opening ----

TEST_F(ProjectStoreTest, NewKeywordProjectPutsItsStartUrlIntoQueueMAndTheSearchPage) {
  store.OpenProject("red cars");
  EXPECT_THAT(All(project.queues[0]), ElementsAre(project.StartURL));
  EXPECT_EQ(project.queues[0].At(0).number, 1);
  EXPECT_EQ(project.queues[0].Next(), 0u);
  EXPECT_EQ(project.search_page, project.StartURL);
  EXPECT_TRUE(project.ProjectLoaded);
  EXPECT_EQ(window.log,
            (Texts{"closed", "clear", "files:", "stage Load data finished ", "0 Address", "Scan 0", "ready"}));
}

TEST_F(ProjectStoreTest, NewAddressProjectHasEmptyQueues) {
  store.OpenProject("x.de");
  for (const LinkQueue& queue : project.queues) EXPECT_EQ(queue.Count(), 0u);
  EXPECT_EQ(project.search_page, "");
  EXPECT_TRUE(project.ProjectLoaded);
}

TEST_F(ProjectStoreTest, SavedProjectComesBackWithItsLinksAndRows) {
  PutCars();
  store.OpenProject("cars");
  EXPECT_THAT(All(project.queues[0]), ElementsAre("http://m"));
  EXPECT_EQ(project.search_page, "");
  EXPECT_THAT(Addresses(), ElementsAre("0@cars.com", "1@cars.com"));
  EXPECT_EQ(window.log, (Texts{"closed", "clear", "row 0", "row 1", "files: data report", "stage Load data finished ",
                               "2 Address", "Scan 0", "ready"}));
}

TEST_F(ProjectStoreTest, AddressesThatAreNotWantedAreLeftOutAndTheReportIsWrittenAgain) {
  class AllButTheFirst final : public AddressFilter {
    [[nodiscard]] bool Keeps(std::string_view address) override { return address != "0@cars.com"; }
  } suppression;
  PutCars(3);
  store.SetSuppression(&suppression);
  store.OpenProject("cars");
  EXPECT_THAT(Addresses(), ElementsAre("1@cars.com", "2@cars.com"));
  project.found.Add({"http://m", "new@cars.com", "", false});  // as many as the report had
  store.SaveProjectReport();
  EXPECT_EQ(Contents(kCarsReport).find("0@cars.com"), std::string::npos);
  EXPECT_NE(Contents(kCarsReport).find("new@cars.com"), std::string::npos);
}

TEST_F(ProjectStoreTest, WhatIsSuppressedLeavesTheLoadedProjectAndItsNextReport) {
  class OneAddress final : public AddressFilter {
   public:
    std::string unwanted;
    [[nodiscard]] bool Keeps(std::string_view address) override { return address != unwanted; }
  } suppression;
  PutCars(2);
  store.SetSuppression(&suppression);
  store.OpenProject("cars");
  project.found.Add({"http://m", "red@cars.com", "M", true});
  ASSERT_TRUE(store.WriteReport().ok());
  window.log.clear();
  const auto clean = [](std::string_view text) { return std::string(text.substr(0, text.find("0@cars.com"))); };
  store.TakeOutSuppressed(clean);
  EXPECT_THAT(window.log, IsEmpty());

  suppression.unwanted = "0@cars.com";
  project.queues[3].AddIfNew("http://www.cars.com/?to=0@cars.com");
  project.queues[3].AddIfNew("http://www.cars.com/");
  project.found.Add({"http://n", "new@cars.com", "Of 0@cars.com"});
  store.TakeOutSuppressed(clean);
  EXPECT_THAT(Addresses(), ElementsAre("1@cars.com", "red@cars.com", "new@cars.com"));
  EXPECT_THAT(window.log, ElementsAre("clear", "row 0", "row 1 red", "row 2", "3 Address"));
  EXPECT_EQ(project.found.At(2).Title, "Of ");
  ASSERT_EQ(project.queues[3].Count(), 1u);
  EXPECT_EQ(project.queues[3].At(0).URL, "http://www.cars.com/");
  EXPECT_EQ(project.found.At(1).Title, "M") << "the report of addresses alone does not know it";
  store.SaveProjectReport();
  EXPECT_EQ(Contents(kCarsReport).find("0@cars.com"), std::string::npos);
  EXPECT_NE(Contents(kCarsReport).find("1@cars.com"), std::string::npos);
}

TEST_F(ProjectStoreTest, AReportWithoutADataFileIsToldAlone) {
  PutCars();
  ASSERT_TRUE(fakes.files.Delete(kCarsData).ok());
  store.OpenProject("cars");
  EXPECT_EQ(window.log[4], "files: report");
}

TEST_F(ProjectStoreTest, ADataFileWithoutAReportIsToldAlone) {
  PutCars();
  ASSERT_TRUE(fakes.files.Delete(kCarsReport).ok());
  store.OpenProject("cars");
  EXPECT_EQ(window.log[2], "files: data");
}

TEST_F(ProjectStoreTest, OpeningEmptiesWhatTheLastProjectLeft) {
  PutCars();
  store.OpenProject("cars");
  project.queues[7].AddIfNew("http://old");
  project.result_offset = 300;
  store.OpenProject("x.de");
  EXPECT_EQ(project.found.Count(), 0u);
  for (const LinkQueue& queue : project.queues) EXPECT_EQ(queue.Count(), 0u);
  EXPECT_EQ(project.result_offset, 0);
  EXPECT_THAT(window.rows, IsEmpty());
  EXPECT_EQ(window.address_count, "0 Address");
}

TEST_F(ProjectStoreTest, ProgressIsShownAtTwentyFortyAndSixtyLinesAcrossProjects) {
  std::string lines;
  for (int i = 0; i < 50; ++i) lines += "http://" + std::to_string(i) + "\r\n";
  fakes.files.Put(kCarsData, kHeader + "[A]\r\n" + lines);
  store.OpenProject("cars");  // the counter stands at 50 then
  EXPECT_EQ(window.stages, (Texts{"Load data ..", "Load data ....", "Load data finished "}));
  window.stages.clear();
  store.OpenProject("cars");  // 60, then from 0 to 39
  EXPECT_EQ(window.stages, (Texts{"Load data ......", "Load data ..", "Load data finished "}));
}

TEST_F(ProjectStoreTest, UnknownSuffixIsToldAndTheFirstPieceBecomesTheProject) {
  store.OpenProject("cars_jp");
  ASSERT_EQ(fakes.boxes.shown.size(), 1u);
  EXPECT_EQ(fakes.boxes.shown[0].text,
            "We will delete any lettes behind \"_\", except \"_en\",\"_fr\",\"_de\",\"_it\",\"_es\",\"_ja\"");
  EXPECT_EQ(fakes.boxes.shown[0].title, "Brenvy Quenlar Pro 3.0");
  EXPECT_EQ(fakes.boxes.shown[0].icon, BoxIcon::kExclamation);
  EXPECT_EQ(fakes.boxes.shown[0].buttons, BoxButtons::kOk);
  EXPECT_EQ(project.DataFile, kCarsData);
  EXPECT_TRUE(project.ProjectLoaded);
  EXPECT_EQ(std::count(window.log.begin(), window.log.end(), "clear"), 1);
  EXPECT_EQ(std::count(window.log.begin(), window.log.end(), "input cars"), 1);
}

TEST_F(ProjectStoreTest, AFrontEndWithoutAnInputBoxLeavesTheFirstPieceToTheStore) {
  window.input_changed = nullptr;
  store.OpenProject("cars_jp");
  EXPECT_EQ(project.DataFile, kCarsData);
  EXPECT_EQ(std::count(window.log.begin(), window.log.end(), "clear"), 1);
  EXPECT_EQ(window.log.back(), "ready");
}

TEST_F(ProjectStoreTest, SuffixBehindASecondUnderscoreFailsLikeAnyOther) {
  store.OpenProject("new_york_en");
  EXPECT_EQ(project.DataFile, "/q/data/new_en.dat");
  EXPECT_EQ(fakes.boxes.shown.size(), 1u);
}

TEST_F(ProjectStoreTest, UnknownLanguageLoadsTheNamesAsTheyWere) {
  store.OpenProject("cars");
  settings.SearchLanguage = 6;
  PutCars();
  store.OpenProject("boats");
  EXPECT_EQ(project.DataFile, kCarsData);
  EXPECT_EQ(project.Keyword, "cars");
  EXPECT_THAT(Addresses(), ElementsAre("0@cars.com", "1@cars.com"));
}

TEST_F(ProjectStoreTest, UnknownLanguageAtFirstStartOpensNothingThatCouldBeSaved) {
  settings.SearchLanguage = 6;
  store.OpenProject("boats");
  EXPECT_TRUE(store.WriteData().ok());
  EXPECT_TRUE(store.WriteReport().ok());
  EXPECT_THAT(fakes.files.AllFiles(), IsEmpty());
}

TEST_F(ProjectStoreTest, StartTextsWithOneFileNameShareTheirFiles) {
  store.OpenProject("a.b.com/one");
  const std::string file = project.DataFile;
  store.OpenProject("http://www.a.b.com/two");
  EXPECT_EQ(project.DataFile, file);
  store.OpenProject("a_b.com");
  EXPECT_EQ(project.DataFile, file);
}

TEST_F(ProjectStoreTest, PathsUseTheSeparatorOfThePlatform) {
  Installation windows;
  windows.program_folder = "C:\\Quenlar";
  windows.separator = '\\';
  ProjectStore on_windows(fakes.platform, project, settings, windows, window, window);
  on_windows.OpenProject("x.de");
  EXPECT_EQ(project.DataFile, "C:\\Quenlar\\data\\x_de.dat");
  EXPECT_EQ(project.ReportFile, "C:\\Quenlar\\report\\x_de.rpt");
}

TEST_F(ProjectStoreTest, ProjectOpenedDuringAPumpWins) {
  PutCars(5);
  AtPump(3, [this] { store.OpenProject("x.de"); });
  store.OpenProject("cars");
  EXPECT_EQ(project.DataFile, "/q/data/x_de.dat");
  EXPECT_THAT(Addresses(), IsEmpty());
  EXPECT_TRUE(project.ProjectLoaded);
  EXPECT_EQ(std::count(window.log.begin(), window.log.end(), "stage Load data finished "), 1);
  EXPECT_THAT(window.rows, IsEmpty());
}

TEST_F(ProjectStoreTest, ProjectOpenedWhileTheMessageIsShownWins) {
  fakes.boxes.while_shown = [this] { store.OpenProject("x.de"); };
  store.OpenProject("cars_jp");
  EXPECT_EQ(project.DataFile, "/q/data/x_de.dat");
  EXPECT_EQ(std::count(window.log.begin(), window.log.end(), "input cars"), 0);
}

TEST_F(ProjectStoreTest, SameProjectOpenedInEveryPumpIsLoadedOnce) {
  PutCars(4);
  int nested = 0;
  fakes.loop.OnPump([&] {
    if (++nested <= 3) store.OpenProject("cars");
  });
  store.OpenProject("cars");
  EXPECT_EQ(project.found.Count(), 4u);
  EXPECT_EQ(window.rows.size(), 4u);
}

TEST_F(ProjectStoreTest, ReportIsReadWithOnePumpAMatch) {
  PutCars(7);
  store.OpenProject("cars");
  EXPECT_EQ(fakes.loop.yields(), 7);
}

// ---- saving ----

TEST_F(ProjectStoreTest, SaveWritesTheDataFileAndTheReportByTheExportMode) {
  store.OpenProject("cars");
  project.found.Add({"http://x.de", "a@b.cc", "T", false});
  EXPECT_TRUE(store.WriteData().ok());
  EXPECT_TRUE(store.WriteReport().ok());
  EXPECT_THAT(Contents(kCarsData), HasSubstr("[M]\r\n" + project.StartURL + "\r\n[F]"));
  EXPECT_EQ(Contents(kCarsReport), kHeader + "\r\na@b.cc\r\n");
  settings.ExportMode = -1;  // anything but 0
  EXPECT_TRUE(store.WriteReport().ok());
  EXPECT_THAT(Contents(kCarsReport), HasSubstr("Home Page"));
}

TEST_F(ProjectStoreTest, PeriodicSavesDoNothingWhileNoProjectIsOpen) {
  project.found.Add({"http://x.de", "a@b.cc", "T", false});
  store.SaveProjectData();
  store.SaveProjectReport();
  EXPECT_THAT(fakes.files.AllFiles(), IsEmpty());
  EXPECT_THAT(window.log, IsEmpty());
}

TEST_F(ProjectStoreTest, FailureIsACompleteSentence) {
  store.OpenProject("cars");
  fakes.files.Protect("/q/data");
  const Status status = store.WriteData();
  EXPECT_EQ(status.kind(), StatusKind::kDenied);
  EXPECT_EQ(status.message(), "/q/data/cars_en.dat cannot be saved: protected !");
}

TEST_F(ProjectStoreTest, FailureOfAPeriodicSaveStandsInPanelOneAndTheOldFileStays) {
  store.OpenProject("cars");
  ASSERT_TRUE(store.WriteData().ok());
  const std::string old = Contents(kCarsData);
  project.queues[3].AddIfNew("http://new");
  fakes.files.SetFreeSpace(10);
  store.SaveProjectData();
  EXPECT_EQ(window.last_stage(), "/q/data/cars_en.dat cannot be saved: no space left !");
  EXPECT_EQ(Contents(kCarsData), old);
  fakes.files.SetFreeSpace({});
  EXPECT_TRUE(store.WriteData().ok());
}

TEST_F(ProjectStoreTest, MoreThan32768LinksOrRecordsRaiseOverflow) {
  store.OpenProject("cars");
  ASSERT_TRUE(store.WriteData().ok());
  const std::string old = Contents(kCarsData);
  for (int i = 0; i <= 32'768; ++i) project.queues[1].AddIfNew(std::to_string(i));
  store.SaveProjectData();
  EXPECT_EQ(window.last_stage(), "Overflow !");
  EXPECT_EQ(Contents(kCarsData), old);
  for (int i = 0; i <= 32'768; ++i) project.found.Add({"", "a@b.cc", "", false});
  const Status status = store.WriteReport();
  EXPECT_EQ(status.kind(), StatusKind::kLimit);
  EXPECT_EQ(status.message(), "Overflow !");
  EXPECT_EQ(Contents(kCarsReport), "nothing");
}

TEST_F(ProjectStoreTest, SaveAskedForDuringASaveHappensOnceAfterIt) {
  store.OpenProject("x.de");
  for (const char* url : {"a", "b", "c"}) project.queues[1].AddIfNew(url);
  int pumps = 0;
  fakes.loop.OnPump([&] {
    if (++pumps > 3) return;
    project.queues[2].AddIfNew("later" + std::to_string(pumps));
    EXPECT_TRUE(store.WriteData().ok());
    EXPECT_TRUE(store.WriteData().ok());
    EXPECT_EQ(Contents("/q/data/x_de.dat"), "nothing");  // the first one is not yet done
  });
  EXPECT_TRUE(store.WriteData().ok());
  EXPECT_EQ(pumps, 3 + 6);
  EXPECT_THAT(Contents("/q/data/x_de.dat"),
              HasSubstr("[A]\r\na\r\nb\r\nc\r\n[B]\r\nlater1\r\nlater2\r\nlater3\r\n[C]"));
}

TEST_F(ProjectStoreTest, ReportMayBeSavedWhileTheDataFileIsBeingSaved) {
  store.OpenProject("cars");
  project.found.Add({"http://x.de", "a@b.cc", "T", false});
  AtPump(1, [this] { EXPECT_TRUE(store.WriteReport().ok()); });
  EXPECT_TRUE(store.WriteData().ok());
  EXPECT_THAT(Contents(kCarsReport), HasSubstr("a@b.cc"));
  EXPECT_THAT(Contents(kCarsData), HasSubstr("[J]"));
}

TEST_F(ProjectStoreTest, ProjectOpenedDuringASaveLetsTheSaveFinishWhole) {
  store.OpenProject("x.de");
  for (const char* url : {"a", "b", "c"}) project.queues[1].AddIfNew(url);
  for (int i = 0; i < 4; ++i) project.found.Add({"http://x.de", std::to_string(i) + "@x.de", "T", false});
  settings.ExportMode = 1;
  AtPump(2, [this] {
    (void)store.WriteReport();  // the second save that was asked for is not forgotten either
    project.found.Add({"http://x.de", "new@x.de", "T", false});
    store.OpenProject("cars");
  });
  EXPECT_TRUE(store.WriteReport().ok());
  EXPECT_THAT(Contents("/q/report/x_de.rpt"), HasSubstr("3@x.de"));
  EXPECT_THAT(Contents("/q/report/x_de.rpt"), HasSubstr("new@x.de"));
  EXPECT_EQ(project.DataFile, kCarsData);
  EXPECT_EQ(Contents(kCarsReport), "nothing");

  store.OpenProject("x.de");
  for (const char* url : {"a", "b", "c"}) project.queues[1].AddIfNew(url);
  AtPump(30, [this] { store.OpenProject("cars"); });
  EXPECT_TRUE(store.WriteData().ok());
  EXPECT_THAT(Contents("/q/data/x_de.dat"), HasSubstr("[A]\r\na\r\nb\r\nc\r\n[B]"));
}

TEST_F(ProjectStoreTest, ASaveThatAnotherProjectOvertookSaysNothingOfThatProjectsReport) {
  PutCars(2);
  store.OpenProject("x.de");
  for (int i = 0; i < 4; ++i) project.found.Add({"http://x.de", std::to_string(i) + "@x.de", "T", false});
  settings.ExportMode = 1;
  AtPump(2, [this] { store.OpenProject("cars"); });
  EXPECT_TRUE(store.WriteReport().ok());
  ASSERT_EQ(project.found.Count(), 2u);
  for (const char* address : {"2@cars.com", "3@cars.com"}) project.found.Add({"http://x.de", address, "T", false});
  store.SaveProjectReport();  // as many addresses as the other project's report held
  EXPECT_THAT(Contents(kCarsReport), HasSubstr("3@cars.com"));
}

TEST_F(ProjectStoreTest, SavingAtOnceInTheMiddleOfASaveHoldsAllAndPumpsNoMore) {
  store.OpenProject("x.de");
  for (const char* url : {"a", "b", "c"}) project.queues[1].AddIfNew(url);
  project.found.Add({"http://x.de", "a@x.de", "T", false});
  int pumps = 0, pumps_at_once = 0;
  fakes.loop.OnPump([&] {
    if (++pumps != 2) return;
    project.queues[2].AddIfNew("later");
    project.found.Add({"http://x.de", "later@x.de", "T", false});
    store.SaveAtOnce();
    pumps_at_once = pumps - 2;
    // A program that ends here has all of it on the disk.
    EXPECT_THAT(Contents("/q/data/x_de.dat"), HasSubstr("[A]\r\na\r\nb\r\nc\r\n[B]\r\nlater\r\n[C]"));
    EXPECT_THAT(Contents("/q/report/x_de.rpt"), HasSubstr("later@x.de"));
  });
  EXPECT_TRUE(store.WriteData().ok());
  EXPECT_GE(pumps, 2);
  EXPECT_EQ(pumps_at_once, 0);
  EXPECT_THAT(Contents("/q/data/x_de.dat"), HasSubstr("later\r\n"));
}

TEST_F(ProjectStoreTest, SavingAtOnceWithoutAProjectWritesNothing) {
  store.SaveAtOnce();
  EXPECT_THAT(fakes.files.AllFiles(), IsEmpty());
}

TEST_F(ProjectStoreTest, ReportSavedWhileItIsBeingLoadedHoldsAllOfIt) {
  PutCars(6);
  AtPump(2, [this] {
    project.found.Add({"http://x.de", "new@cars.com", "", false});
    EXPECT_TRUE(store.WriteReport().ok());
  });
  store.OpenProject("cars");
  EXPECT_EQ(project.found.Count(), 7u);
  EXPECT_EQ(window.rows.size(), 7u);
  for (const char* address : {"0@cars.com", "5@cars.com", "new@cars.com"}) {
    EXPECT_THAT(Contents(kCarsReport), HasSubstr(address));
  }
}

TEST_F(ProjectStoreTest, DeletedProjectDoesNotComeBackByASaveThatWasUnderWay) {
  PutCars();
  store.OpenProject("cars");
  for (const char* url : {"a", "b", "c"}) project.queues[1].AddIfNew(url);
  AtPump(2, [this] {
    (void)store.WriteData();
    EXPECT_TRUE(store.DeleteFiles().ok());
  });
  EXPECT_TRUE(store.WriteData().ok());
  EXPECT_THAT(fakes.files.AllFiles(), IsEmpty());
}

TEST_F(ProjectStoreTest, EveryFailingCallOfASaveLeavesTheOldFilesAndTheNextSaveWorks) {
  PutCars();
  store.OpenProject("cars");
  project.queues[1].AddIfNew("http://new");
  project.found.Add({"http://x.de", "new@cars.com", "", false});
  const std::string data = Contents(kCarsData), report = Contents(kCarsReport);
  for (int call = 1; call <= 6; ++call) {
    fakes.files.Put(kCarsData, data);
    fakes.files.Put(kCarsReport, report);
    fakes.files.FailCall(call, StatusKind::kFull);
    (void)store.WriteData();
    for (const char* path : {kCarsData, kCarsReport}) {
      const std::string now = Contents(path);
      EXPECT_TRUE(now == data || now == report || now.ends_with("[J]\r\n") || now.ends_with("new@cars.com\r\n")) << now;
    }
    fakes.files.FailCall(0);
    EXPECT_TRUE(store.WriteData().ok());
    EXPECT_TRUE(store.WriteReport().ok());
    EXPECT_THAT(Contents(kCarsData), HasSubstr("http://new"));
    EXPECT_THAT(Contents(kCarsReport), HasSubstr("new@cars.com"));
  }
}

// ---- nothing found is thrown away ----

TEST_F(ProjectStoreTest, DataFileWithAnotherHeaderIsKeptAsideBeforeTheFirstSave) {
  for (const char* foreign : {"Something else\r\n[A]\r\nhttp://a\r\n", "", "\xEF\xBB\xBF[A]"}) {
    fakes.files.Put(kCarsData, foreign);
    store.OpenProject("cars");
    EXPECT_THAT(All(project.queues[0]), ElementsAre(project.StartURL));
    EXPECT_EQ(Contents(kCarsData), foreign);
    ASSERT_TRUE(store.WriteData().ok());
    EXPECT_EQ(Contents(std::string(kCarsData) + ".bak"), foreign);
    EXPECT_TRUE(Contents(kCarsData).starts_with(kHeader));
    ASSERT_TRUE(store.WriteData().ok());
    EXPECT_EQ(Contents(std::string(kCarsData) + ".bak"), foreign);
    ASSERT_TRUE(fakes.files.Delete(std::string(kCarsData) + ".bak").ok());
  }
}

TEST_F(ProjectStoreTest, EarlierFileKeptAsideIsNotReplaced) {
  fakes.files.Put(std::string(kCarsData) + ".bak", "first");
  fakes.files.Put(kCarsData, "second");
  store.OpenProject("cars");
  ASSERT_TRUE(store.WriteData().ok());
  EXPECT_EQ(Contents(std::string(kCarsData) + ".bak"), "first");
  EXPECT_EQ(Contents(std::string(kCarsData) + ".bak2"), "second");
}

TEST_F(ProjectStoreTest, FailedSaveLeavesAForeignFileUnderItsName) {
  for (int call = 1; call <= 4; ++call) {
    fakes.files.Put(kCarsData, "foreign");
    store.OpenProject("cars");
    fakes.files.FailCall(call, StatusKind::kFull);
    EXPECT_FALSE(store.WriteData().ok()) << call;
    EXPECT_EQ(Contents(kCarsData), "foreign") << call;
    fakes.files.FailCall(0);
    EXPECT_TRUE(store.WriteData().ok());
    EXPECT_EQ(Contents(std::string(kCarsData) + ".bak"), "foreign");
    ASSERT_TRUE(fakes.files.Delete(std::string(kCarsData) + ".bak").ok());
  }
}

TEST_F(ProjectStoreTest, UnreadableFilesAreKeptAsideToo) {
  PutCars();
  fakes.files.FailCall(1, StatusKind::kDenied);  // the data file
  store.OpenProject("cars");
  EXPECT_THAT(All(project.queues[0]), ElementsAre(project.StartURL));
  fakes.files.FailCall(0);
  const std::string data = Contents(kCarsData);
  ASSERT_TRUE(store.WriteData().ok());
  EXPECT_EQ(Contents(std::string(kCarsData) + ".bak"), data);
  fakes.files.Put(kCarsData, data);
  fakes.files.FailCall(2, StatusKind::kDenied);  // the report
  store.OpenProject("cars");
  EXPECT_THAT(All(project.queues[0]), ElementsAre("http://m"));
  EXPECT_THAT(Addresses(), IsEmpty());
  const std::string report = Contents(kCarsReport);
  fakes.files.FailCall(0);
  ASSERT_TRUE(store.WriteReport().ok());
  EXPECT_EQ(Contents(std::string(kCarsReport) + ".bak"), report);
}

TEST_F(ProjectStoreTest, GoodFilesAreReplacedWithoutACopy) {
  PutCars();
  store.OpenProject("cars");
  ASSERT_TRUE(store.WriteData().ok());
  ASSERT_TRUE(store.WriteReport().ok());
  EXPECT_THAT(fakes.files.AllFiles(), ElementsAre(kCarsData, kCarsReport));
}

// ---- deleting ----

TEST_F(ProjectStoreTest, DeletingSkipsFilesThatDoNotExist) {
  store.OpenProject("cars");
  EXPECT_TRUE(store.DeleteFiles().ok());
  PutCars();
  ASSERT_TRUE(fakes.files.Delete(kCarsData).ok());
  EXPECT_TRUE(store.DeleteFiles().ok());
  EXPECT_THAT(fakes.files.AllFiles(), IsEmpty());
}

TEST_F(ProjectStoreTest, FileThatCannotBeDeletedIsToldAndTheOtherOneGoes) {
  PutCars();
  store.OpenProject("cars");
  fakes.files.Protect("/q/data");
  const Status status = store.DeleteFiles();
  EXPECT_EQ(status.message(), "/q/data/cars_en.dat cannot be deleted: protected !");
  EXPECT_THAT(fakes.files.AllFiles(), ElementsAre(kCarsData));
}

}  // namespace
}  // namespace quenlar
