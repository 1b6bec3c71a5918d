#include "forms/frm_extract.h"

#include <algorithm>
#include <new>
#include <utility>

#include "base/product.h"
#include "forms/address_rows.h"
#include "forms/open_web_page.h"
#include "platform/clock.h"
#include "platform/files.h"
#include "platform/interface_table.h"
#include "platform/message_boxes.h"
#include "platform/shell.h"
#include "project/save_check.h"
#include "run/end_reasons.h"

namespace quenlar {
namespace {

constexpr const char* kExtractCaption = "&Extract";
constexpr const char* kStopCaption = "&Stop";
constexpr const char* kInputHint = "Enter URL as \"http://www.example.com\" or Keyword as \"picture search\"";

}  // namespace

frmExtract::frmExtract(Context context) : Form("frmExtract", kProductCaption), context_(context) {
  system_menu = {&mnuWeb};
  txtSearch.SetVisible(false);
  cmdExport.SetEnabled(false);
  stsExtract.SetPanel(2, "Email 0 ");
  stsExtract.SetPanel(3, "Scan 0");
  stsExtract.SetPanel(4, "0 Kbps");
  cmbURL.hint = "Keyword or web address";
  cmbURL.Change = [this] { cmbURL_Change(); };
  cmbURL.Click = [this] { PickProject(); };
  cmbURL.GotFocus = [this] { ShowStage(kInputHint); };
  cmdExtract.Click = [this] { cmdExtract_Click(); };
  cmdExport.Click = [this] { ExportReport(); };
  cmdDelete.Click = [this] { DeleteProject(); };
  cmdOption.Click = [this] { ShowModalFrom(cmdOption, context_.option); };
  cmdTool.Click = [this] { ShowModalFrom(cmdTool, context_.tool); };
  cmdHide.Click = [this] { cmdHide_Click(); };
  tmrText.Tick = [this] { tmrText_Tick(); };
  SetUpList();
}

std::vector<ui::Control*> frmExtract::Controls() {
  return {&cmbURL,  &cmdExtract, &lstMail,   &cmdExport,  &cmdDelete, &cmdOption,
          &cmdTool, &cmdHide,    &txtSearch, &stsExtract, &tmrText};
}

void frmExtract::SetUpList() {
  lstMail.columns = AddressColumns();
  lstMail.CellText = [this](std::uint32_t row, int column) {
    return AddressCell(context_.engine.project.found, row, column);
  };
  lstMail.CellColor = [this](std::uint32_t row, int column) {
    return AddressCellColor(context_.engine.project.found, row, column);
  };
  lstMail.DblClick = [this] {
    if (lstMail.selected()) OpenPage(*lstMail.selected());
  };
  lstMail.Miss = [this] { lstMail.ClearSelection(); };
  const auto copy = [this](const std::string& text) { context_.engine.platform.shell.CopyToClipboard(text); };
  lstMail.commands = {
      {"Copy &address\tCtrl+C", 'C',
       [this, copy](const auto& rows) { copy(CopyOfAddresses(context_.engine.project.found, rows)); }},
      {"Copy &row", 0, [this, copy](const auto& rows) { copy(CopyOfRows(context_.engine.project.found, rows)); }},
      {"&Open page", 0, [this](const auto& rows) { OpenPage(rows.front()); }},
  };
}

// The models outlive the window, so a window that is opened again during a run shows the run as it stands.
void frmExtract::Load() {
  const Engine& engine = context_.engine;
  if (!RunGoesOn()) {
    cmdExtract.SetText(kExtractCaption);
  } else if (cmdExtract.enabled()) {  // not while a stop is under way
    cmdExtract.SetText(kStopCaption);
  }
  if (engine.project_list.entries().empty()) {
    cmdDelete.SetEnabled(false);
  } else if (RunGoesOn() || !cmbURL.text().empty()) {
    cmbURL.SetItems(engine.project_list.entries());
  } else {
    FillProjectCombo();
  }
  txtSearch.SetText(LanguageCode(engine.settings.SearchLanguage));
  ShowStage("Waiting ...");
  ShowAddressCount(engine.project.found.Count());
  std::int64_t started = 0;
  // The count after opening the window leaves out levels 6 to 10. It is what the window has always shown here; a run
  // counts its own pages. Kept: MainWindow.Panel3SumsTheNextIndicesOfLevels0To5Alone.
  constexpr std::size_t kScannedLevels = 6;
  for (std::size_t level = 0; level < kScannedLevels; ++level) started += engine.project.queues[level].Next();
  ShowScanCount(started);
  ready_ = true;
}

// The program goes on behind its notification icon, whose menu brings the window back.
void frmExtract::Unload() {
  ready_ = false;
  context_.mnuExtractor.SetEnabled(true);
}

// --- The run's beginning and its stop ---

bool frmExtract::RunGoesOn() const { return context_.engine.run.running || context_.tmrExtract.enabled(); }

// Not inside an opening or an export, whose pumps the whole run would be nested in.
bool frmExtract::MayStart() const {
  return cmdExtract.enabled() && opening_ == 0 && !exporting_ && !starting_ && !RunGoesOn();
}

void frmExtract::cmdExtract_Click() {
  if (cmdExtract.text() == kStopCaption) {
    StopRun();
  } else if (MayStart()) {
    OpenPicked();
    starting_ = true;
    StartRun();
    starting_ = false;
  }
}

// The timer begins the run outside of this handler.
void frmExtract::StartRun() {
  if (!context_.engine.platform.interfaces.IsOnline()) {
    Warn(kEndOffLine);
    return;
  }
  if (cmbURL.text().empty()) {
    Warn("Please enter keyword or URL !");
    return;
  }
  cmbURL.SetEnabled(false);  // what is opened from now on is what the run works on
  if (!MakeReadyToRun()) {
    cmbURL.SetEnabled(true);
    return;
  }
  cmdExtract.SetText(kStopCaption);
  for (ui::Control* control : Inputs()) control->SetEnabled(false);
  cmdExport.SetEnabled(false);
  cmdDelete.SetEnabled(false);
  ShowStage("Started to extract email address process at " + context_.engine.platform.clock.TimeText());
  ShowScanCount(0);
  context_.tmrExtract.SetEnabled(true);
  context_.mnuExit.SetEnabled(false);
}

// When it fails, it has told why.
bool frmExtract::MakeReadyToRun() {
  const Engine& engine = context_.engine;
  // A project without files, once more: with the language or the memory that there is by now.
  if (engine.project.DataFile.empty() && (!cmbURL_Change() || cmbURL.text().empty())) return false;
  const Status can = CheckCanBeSaved(engine.platform.files, engine.project);
  WarnOnFailure(can);
  if (!can.ok()) return false;
  AddCurrentProject();
  return !engine.project.DataFile.empty();  // memory may not hold it under its name with a language
}

void frmExtract::StopRun() {
  cmdExtract.SetText(kExtractCaption);
  cmdExtract.SetEnabled(false);
  context_.engine.run.stop_requested = true;
}

// --- Projects ---

// Opens the project. Returns false for one that does not fit into memory, after a message.
bool frmExtract::cmbURL_Change() {
  if (RunGoesOn()) return true;
  ++opening_;
  cmdExtract.SetEnabled(false);
  bool opened = true;
  try {
    context_.engine.projects.OpenProject(cmbURL.text());
  } catch (const std::bad_alloc&) {
    opened = false;
    Warn(kEndNoMemory);
  }
  if (--opening_ == 0) cmdExtract.SetEnabled(true);
  return opened;
}

void frmExtract::AddCurrentProject() {
  const Engine& engine = context_.engine;
  if (context_.engine.project_list.Add(cmbURL.text(), engine.project.IsKeywordProject)) FillProjectCombo();
}

void frmExtract::FillProjectCombo() {
  const std::vector<std::string> entries = context_.engine.project_list.entries();
  cmbURL.SetItems(entries);
  if (!entries.empty()) cmbURL.SetText(entries.front());
}

void frmExtract::PickProject() {
  context_.engine.project_list.Pick(cmbURL.text());
  cmbURL.SetItems(context_.engine.project_list.entries());
  tmrText.SetEnabled(true);
}

void frmExtract::tmrText_Tick() {
  tmrText.SetEnabled(false);
  const std::vector<std::string> entries = context_.engine.project_list.entries();
  if (!entries.empty() && !starting_ && !RunGoesOn()) OpenText(entries.front());
}

// What works on the chosen project does not wait for the timer: until its tick, another project is open than the box
// shows.
void frmExtract::OpenPicked() {
  while (tmrText.enabled()) tmrText_Tick();
}

// Opens the project also when the box shows this text already, as it does after a pick.
void frmExtract::OpenText(const std::string& text) {
  if (cmbURL.text() == text) {
    cmbURL_Change();
  } else {
    cmbURL.SetText(text);
  }
}

void frmExtract::DeleteProject() {
  OpenPicked();
  Engine& engine = context_.engine;
  const BoxAnswer answer = engine.platform.boxes.Show("Are you sure to delete it ?", kProductCaption,
                                                      BoxIcon::kExclamation, BoxButtons::kYesNo);
  if (answer != BoxAnswer::kYes || RunGoesOn() || starting_) return;
  const Status deleted = engine.projects.DeleteFiles();
  engine.project_list.Remove(cmbURL.text());
  const std::vector<std::string> entries = engine.project_list.entries();
  cmbURL.SetItems(entries);
  OpenText(entries.empty() ? cmbURL.text() : entries.front());  // without files, the text's project is an empty one
  engine.project_list.WriteProjectKey(false);
  if (engine.project_list.entries().empty()) {
    cmdDelete.SetEnabled(false);
    ClearRows();
  }
  WarnOnFailure(deleted);
}

void frmExtract::ExportReport() {
  if (std::exchange(exporting_, true)) return;
  OpenPicked();
  // The focus leaves a button that is disabled for a moment; a window that would give it back gives it to the list.
  const bool enabled = cmdExport.enabled();
  cmdExport.SetEnabled(!enabled);
  cmdExport.SetEnabled(enabled);
  lstMail.SetFocus();
  OpenReportInEditor();
  exporting_ = false;
}

void frmExtract::OpenReportInEditor() {
  Engine& engine = context_.engine;
  engine.projects.FinishLoading();
  if (engine.project.found.Count() < 1) {
    Warn("No eMail address found");
    return;
  }
  const std::string report = engine.project.ReportFile;
  const Status saved = engine.projects.WriteReport();
  WarnOnFailure(saved);
  if (!saved.ok() || !engine.platform.files.FileExists(report)) return;  // it pumps, and the project may be deleted
  WarnOnFailure(engine.platform.shell.Edit(report));
}

// A row that was read from a report of addresses alone has no page.
void frmExtract::OpenPage(std::uint32_t row) {
  const FoundAddresses& found = context_.engine.project.found;
  if (row < found.Count() && !found.At(row).URL.empty()) {
    OpenWebPage(context_.engine.platform.shell, found.At(row).URL);
  }
}

// --- Other windows ---

void frmExtract::ShowModalFrom(ui::Button& button, ui::Form& form) {
  button.SetEnabled(false);
  form.ShowModal();
  button.SetEnabled(!RunGoesOn());
}

void frmExtract::cmdHide_Click() {
  cmdHide.SetEnabled(false);
  context_.mnuExtractor.SetEnabled(true);
  Hide();
  cmdHide.SetEnabled(true);
}

// --- RunView ---

void frmExtract::ShowStage(const std::string& text) { stsExtract.SetPanel(1, text); }

void frmExtract::ShowAddressCount(std::uint32_t count) { stsExtract.SetPanel(2, std::to_string(count) + " Address"); }

void frmExtract::ShowScanCount(std::int64_t count) { stsExtract.SetPanel(3, "Scan " + std::to_string(count)); }

void frmExtract::AddRow(std::uint32_t index, bool) { lstMail.SetRows(index + 1); }

void frmExtract::ClearRows() { lstMail.SetRows(0); }

// --- RunHost ---

bool frmExtract::StopPressed() const { return cmdExtract.text() != kStopCaption; }

void frmExtract::RunEnded(const std::string& reason) {
  data_failure_.clear();
  Warn(reason);
  for (const std::string& message : std::exchange(after_run_, {})) Warn(message);
}

void frmExtract::DataSaved(const Status& saved) {
  WarnOnFailure(saved);
  data_failure_ = saved.message();
}

// The data file fails with the report before it; that is told once.
void frmExtract::ReportSaved(const Status& saved) {
  if (saved.message() != data_failure_) WarnOnFailure(saved);
}

// A run that ends in its search phase leaves Report disabled, although the project may hold addresses of earlier runs:
// only a link run enables it. Kept: MainWindowRun.ARunThatEndsInsideTheSearchPhaseLeavesExportDisabled.
void frmExtract::Idle(bool links_visited) {
  cmdExtract.SetText(kExtractCaption);
  cmdExtract.SetEnabled(true);
  for (ui::Control* control : Inputs()) control->SetEnabled(true);
  cmdDelete.SetEnabled(!context_.engine.project_list.entries().empty());
  if (links_visited) cmdExport.SetEnabled(true);
  ShowStage("Extract process ended at " + context_.engine.platform.clock.TimeText());
}

void frmExtract::RunOver() { context_.mnuExit.SetEnabled(true); }

void frmExtract::TellAfterRun(const std::string& message) {
  if (RunGoesOn()) {
    if (std::find(after_run_.begin(), after_run_.end(), message) == after_run_.end()) after_run_.push_back(message);
  } else {
    Warn(message);
  }
}

// --- ProjectView ---

void frmExtract::ProjectClosed() { cmdDelete.SetEnabled(false); }

void frmExtract::ProjectFiles(bool has_data, bool has_report) {
  cmdExport.SetEnabled(has_report);
  cmdDelete.SetEnabled(has_data);
}

void frmExtract::ProjectReady() {
  if (!ready_) return;
  if (!starting_ && opening_ <= 1) cmdExtract.SetEnabled(true);
  ShowStage(kReadyStage);
}

// The caret goes to the end of the text, where the user goes on typing.
void frmExtract::InputText(const std::string& text) {
  cmbURL.SetText(text);
  cmbURL.MoveCaretToEnd();
}

std::vector<ui::Control*> frmExtract::Inputs() { return {&cmbURL, &cmdOption, &cmdTool}; }

void frmExtract::Warn(const std::string& text) {
  context_.engine.platform.boxes.Show(text, kProductCaption, BoxIcon::kExclamation, BoxButtons::kOk);
}

void frmExtract::WarnOnFailure(const Status& status) {
  if (!status.ok()) Warn(SentenceOf(status));
}

}  // namespace quenlar
