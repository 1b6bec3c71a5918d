// Opens, saves and deletes the open project.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <utility>

#include "base/status.h"
#include "platform/platform.h"
#include "platform/pump.h"
#include "project/record_writer.h"
#include "project/report_file.h"
#include "state/project_saver.h"
#include "state/run_state.h"
#include "state/run_view.h"
#include "state/settings.h"

namespace quenlar {

// The stage text of a front end that has a project ready to be run.
inline constexpr const char* kReadyStage = "Ready now !";

// What a front end learns of the project at hand, besides the rows and panels of RunView. What it does not override
// shows nothing. One opening tells ProjectClosed, then ProjectFiles, then ProjectReady; one that another opening
// overtakes ends early.
class ProjectView {
 public:
  virtual ~ProjectView() = default;
  // Another project is about to be loaded.
  virtual void ProjectClosed() {}
  // The project is loaded, and has these files.
  virtual void ProjectFiles(bool /*has_data*/, bool /*has_report*/) {}
  // The project can be run.
  virtual void ProjectReady() {}
  // This text names the project instead of the text that was given. It is opened next, unless showing it has opened a
  // project already, as an input box does whose change handler is OpenProject.
  virtual void InputText(const std::string& /*text*/) {}
};

class ProjectStore final : public ProjectSaver {
 public:
  ProjectStore(const Platform& platform, Project& project, const Settings& settings, const Installation& installation,
               RunView& view, ProjectView& project_view, Pump::Pace pace = Pump::Pace::kWhenTimeHasPassed);
  ProjectStore(const ProjectStore&) = delete;
  ProjectStore& operator=(const ProjectStore&) = delete;

  // Opens the project that `text` names: derives its names, loads its data file into the queues and its report into the
  // table, and shows both. A save that is under way is finished first, or fails, without pumping.
  //
  // Pumps. When it is called again inside a pump, the later call wins, and the earlier one returns without touching the
  // project any more. Throws std::bad_alloc; no project is open then.
  void OpenProject(std::string_view text);

  // Loads the rest of a report at once when an opening further up the stack is still loading it. Does not pump.
  void FinishLoading();

  // Replace the data file or the report with the current state. Both pump. Without an open project they do nothing.
  //
  // A call during a save of the same file returns success at once, and the file is saved once more after that save. A
  // call while the project is being loaded loads the rest first. A failure leaves the old file whole, and its message
  // is complete: "Overflow !" or a sentence that ends in " !".
  //
  // A data file drops the links of finished pages, so a report with the addresses of these pages must be on the disk
  // before it. WriteData therefore writes the report first when it is behind, and fails when that fails. "Overflow !"
  // of the report is the exception: such a project could never be saved again.
  Status WriteData() override;
  Status WriteReport() override;

  // Writes both files, in the same order and on the same condition as WriteData, without pumping. What is being saved
  // or loaded is finished first. It is for the end of the program. Failures are shown as those of SaveProjectData are.
  void SaveAtOnce();

  // PeriodicSaver. The same as WriteData and WriteReport, but a failure is shown in panel 1 and reported to the
  // function that OnSaveFailure has set.
  void SaveProjectData() override;
  void SaveProjectReport() override;
  void OnSaveFailure(std::function<void(const Status&)> told) { on_save_failure_ = std::move(told); }

  // Addresses that `suppression` does not keep are left out when a project is opened, and so out of its next report. It
  // must outlive the store.
  void SetSuppression(AddressFilter* suppression) { suppression_ = suppression; }

  // Takes the addresses out of the loaded project that the suppression does not keep by now, and the links that name
  // one. `clean` returns a text without those that it names, for titles and pages. The report that is on the disk is
  // behind then. A save that is under way is finished first. No run may go on. Does not pump.
  void TakeOutSuppressed(const std::function<std::string(std::string_view text)>& clean);

  // Deletes the data file and the report of the open project, as far as they exist. A save that is under way is given
  // up. The message of a failure is a complete sentence.
  Status DeleteFiles();

 private:
  enum class File { kData, kReport };
  struct Save {
    File file;
    RecordWriter* under_way = nullptr;
    bool again = false;
    std::uint32_t addresses = 0;  // in the table when the latest save began
    bool waits_for_report = false;
    // The file on the disk could not be loaded, so the first save keeps it under another name.
    bool keep_old = false;
  };

  [[nodiscard]] const std::string& PathOf(const Save& save) const;
  Status Write(Save& save);
  Status WriteOnce(Save& save);
  [[nodiscard]] Status Advance(Save& save, RecordWriter& writer);
  [[nodiscard]] Result<std::unique_ptr<RecordWriter>> Start(Save& save);
  Status Commit(Save& save, RecordWriter& writer, const std::string& path);
  Status Replace(Save& save, RecordWriter& writer, const std::string& path);
  Status FinishSave(Save& save);
  static void GiveUp(Save& save);
  void FinishSaves();
  Status WriteWithoutPumping(Save& save);
  void Show(const Status& failure);
  Status BringReportUpToDate();
  [[nodiscard]] static bool KeepsDataBack(const Status& report);
  [[nodiscard]] bool ReportIsBehind() const;

  void Open(const std::string& typed);
  void OpenFirstPiece(const std::string& typed);
  void Clear();
  [[nodiscard]] bool LoadLinks(std::uint64_t opening);
  [[nodiscard]] bool LoadReport(std::uint64_t opening);
  void ProgressTick();

  Platform platform_;
  Project& project_;
  const Settings& settings_;
  const Installation& installation_;
  RunView& view_;
  ProjectView& project_view_;
  Pump pump_;
  Save data_{File::kData};
  Save report_{File::kReport};
  AddressFilter* suppression_ = nullptr;
  ReportReader* reader_ = nullptr;  // while a report is being loaded
  std::uint64_t openings_ = 0;      // calls of OpenProject so far
  std::uint32_t reported_ = 0;      // addresses in the report on the disk, as far as it was loaded or written
  std::int16_t progress_ = 0;
  std::function<void(const Status&)> on_save_failure_;
};

}  // namespace quenlar
