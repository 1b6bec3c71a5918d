// The main window: the user types a keyword or an address, starts and stops runs, and watches the addresses come.
#pragma once

#include <chrono>
#include <cstdint>
#include <string>
#include <vector>

#include "engine/collection_job.h"
#include "engine/engine.h"
#include "engine/job.h"
#include "forms/collection_menu.h"
#include "forms/frm_email_merge_tool.h"
#include "forms/frm_option.h"
#include "platform/file_dialogs.h"
#include "settings/web_settings.h"
#include "ui/controls.h"

namespace quenlar {

class frmExtract final : public ui::Form, public RunView, public RunHost, public ProjectView {
 public:
  // Nothing of these is used before the first event, so they may be constructed later than the form.
  struct Context {
    Engine& engine;
    Job& classic;
    CollectionJob& collection;
    const WebSettings& web_settings;
    NeverList& never;
    frmOption& option;
    frmEmailMergeTool& tool;
    frmSightings& sightings;
    frmWhy& why;
    // Of the notification icon's form.
    ui::Timer& tmrExtract;
    ui::MenuItem& mnuExtractor;
    ui::MenuItem& mnuExit;
  };

  explicit frmExtract(Context context);

  ui::ComboBox cmbURL{"cmbURL"};
  ui::Button cmdExtract{"cmdExtract", "&Extract"};
  ui::TextBox txtSearch{"txtSearch"};  // hidden: the code of the search language
  ui::ListView lstMail{"lstMail"};
  ui::Button cmdExport{"cmdExport", "&Report"};
  ui::Button cmdDelete{"cmdDelete", "&Delete"};
  ui::Button cmdOption{"cmdOption", "&Option"};
  ui::Button cmdTool{"cmdTool", "&Tool"};
  ui::Button cmdHide{"cmdHide", "&Hide"};
  ui::StatusBar stsExtract{"stsExtract", 4};
  ui::Timer tmrText{"tmrText", std::chrono::milliseconds(10), false};
  ui::MenuItem mnuWeb{"mnuWeb", "&Web settings ..."};  // in the system menu
  FileDialogRequest CommonDialog1{.title = "", .filter = "Text(*.txt)|*.txt", .folder = "", .proposed_name = ""};

  [[nodiscard]] std::vector<ui::Control*> Controls() override;
  void Load() override;
  void Unload() override;

  // Handlers that have names of their own. All of them may pump.
  void AddCurrentProject();  // when a run starts
  void PickProject();        // cmbURL click
  void DeleteProject();      // cmdDelete click
  void FillProjectCombo();
  void ExportReport();  // cmdExport click

  // What the window has open: a classic project, or a collection while the setting says so.
  [[nodiscard]] Job& job() const { return *job_; }
  // Shows what the setting says, now or as soon as nothing is under way any more. Pumps.
  void FollowSetting();
  // Takes what is suppressed by now out of what is open; its files have lost it already. Pumps. Not while a run goes
  // on.
  void TakeOutSuppressed();
  // Whether a run is under way, or will begin with the next tick of its timer.
  [[nodiscard]] bool RunGoesOn() const;

  // Shows a dialog that can be opened at any time. While no run goes on it is modal: the call pumps until the dialog
  // has been closed. A run would stand still until then, so during a run the call returns at once.
  void ShowDialog(ui::Form& dialog);

  // Shows a message in a message box: at once when no run goes on, otherwise when the run has ended. The same message
  // is shown once.
  void TellAfterRun(const std::string& message);

  // RunView
  void ShowStage(const std::string& text) override;
  void ShowAddressCount(std::uint32_t count) override;
  void ShowScanCount(std::int64_t count) override;
  void AddRow(std::uint32_t index, bool red) override;
  void ClearRows() override;

  // RunHost
  [[nodiscard]] bool StopPressed() const override;
  void RunEnded(const std::string& reason) override;
  void DataSaved(const Status& saved) override;
  void ReportSaved(const Status& saved) override;
  void Idle(bool links_visited) override;
  void RunOver() override;

  // ProjectView
  void ProjectClosed() override;
  void ProjectFiles(bool has_data, bool has_report) override;
  void ProjectReady() override;
  void InputText(const std::string& text) override;

  // The window is loaded.
  [[nodiscard]] bool Ready() const { return ready_; }

 private:
  void SetUpList();
  void cmdExtract_Click();
  void StartRun();
  void StopRun();
  [[nodiscard]] bool MakeReadyToRun();
  bool cmbURL_Change();
  void OpenText(const std::string& text);
  void tmrText_Tick();
  void OpenPicked();
  void AskAndDelete();
  void OpenReportInEditor();
  void OpenPage(std::uint32_t row);
  void ShowModalFrom(ui::Button& button, ui::Form& form);
  void cmdHide_Click();

  [[nodiscard]] bool MayStart() const;
  // The controls that can be used only while no run goes on.
  [[nodiscard]] std::vector<ui::Control*> Inputs();
  void Warn(const std::string& text);
  void WarnOnFailure(const Status& status);

  Context context_;
  Job* job_;
  CollectionMenu menu_;
  bool ready_ = false;      // the window is loaded
  bool starting_ = false;   // between the Extract button and the timer that it enables
  bool exporting_ = false;  // the report is being written for the editor
  bool deleting_ = false;   // a project is being deleted, and the next one opened
  int opening_ = 0;         // projects being opened, one inside the other
  std::vector<std::string> after_run_;
  std::string data_failure_;  // of saving the data file at the end of the run
};

}  // namespace quenlar
