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
#include "run/end_reasons.h"

namespace quenlar {
namespace {

constexpr const char* kExtractCaption = "&Extract";
constexpr const char* kStopCaption = "&Stop";
constexpr const char* kInputHint = "Enter URL as \"http://www.example.com\" or Keyword as \"picture search\"";

}  // namespace

frmExtract::frmExtract(Context context)
    : Form("frmExtract", kProductCaption),
      context_(context),
      job_(&context.classic),
      menu_({context.collection, context.never, context.sightings, context.why, context.engine,
             [this] { return job_ == &context_.collection; }, [this](ui::Form& dialog) { ShowDialog(dialog); }}) {
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
  lstMail.CellText = [this](std::uint32_t row, int column) { return AddressCell(job_->found(), row, column); };
  lstMail.CellColor = [this](std::uint32_t row, int column) { return AddressCellColor(job_->found(), row, column); };
  lstMail.DblClick = [this] {
    if (lstMail.selected()) OpenPage(*lstMail.selected());
  };
  lstMail.Miss = [this] { lstMail.ClearSelection(); };
  const auto copy = [this](const std::string& text) { context_.engine.platform.shell.CopyToClipboard(text); };
  lstMail.commands = {
      {"Copy &address\tCtrl+C", 'C', [this, copy](const auto& rows) { copy(CopyOfAddresses(job_->found(), rows)); }},
      {"Copy &row", 0, [this, copy](const auto& rows) { copy(CopyOfRows(job_->found(), rows)); }},
      {"&Open page", 0, [this](const auto& rows) { OpenPage(rows.front()); }},
  };
  for (ui::ListView::Command& command : menu_.Commands()) lstMail.commands.push_back(std::move(command));
}

// The models outlive the window, so a window that is opened again during a run shows the run as it stands.
void frmExtract::Load() {
  if (!RunGoesOn()) {
    FollowSetting();
    cmdExtract.SetText(kExtractCaption);
  } else if (cmdExtract.enabled()) {  // not while a stop is under way
    cmdExtract.SetText(kStopCaption);
  }
  const std::vector<std::string> texts = job_->Texts();
  if (texts.empty()) {
    cmdDelete.SetEnabled(false);
  } else if (RunGoesOn() || !cmbURL.text().empty()) {
    cmbURL.SetItems(texts);
  } else {
    FillProjectCombo();
  }
  txtSearch.SetText(LanguageCode(context_.engine.settings.SearchLanguage));
  ShowStage("Waiting ...");
  ShowAddressCount(job_->found().Count());
  ShowScanCount(job_->scanned());
  ready_ = true;
}

// The program goes on behind its notification icon, whose menu brings the window back.
void frmExtract::Unload() {
  ready_ = false;
  context_.mnuExtractor.SetEnabled(true);
}

// Whatever is under way keeps what it began with; the setting is followed behind it.
void frmExtract::FollowSetting() {
  Job& wanted = context_.web_settings.collect != 0 ? context_.collection : context_.classic;
  if (job_ == &wanted || RunGoesOn() || opening_ > 0 || starting_ || exporting_ || deleting_) return;
  const std::vector<std::string> before = std::exchange(job_, &wanted)->Texts();
  tmrText.SetEnabled(false);  // what was picked belongs to the list of before
  ClearRows();
  const std::vector<std::string> texts = job_->Texts();
  const std::string text = cmbURL.text();
  cmbURL.SetItems(texts);
  // A name out of the list of before may mean nothing here. A web address, which has a dot, and what was typed stay.
  const bool name = text.find('.') == std::string::npos && std::ranges::count(before, text) > 0;
  if (name && std::ranges::count(texts, text) == 0) {
    OpenText(texts.empty() ? "" : texts.front());
  } else if (texts.empty() || !cmbURL.text().empty()) {
    cmbURL_Change();    // an empty text closes what was open before
  } else if (ready_) {  // at first Load goes on with it
    FillProjectCombo();
  }
}

void frmExtract::TakeOutSuppressed() {
  if (cmbURL.text().empty()) return;
  const bool taken_out = opening_ == 0 && job_->HasFiles() && job_->TakeOutSuppressed();
  if (!taken_out) cmbURL_Change();
}

// --- The run's beginning and its stop ---

bool frmExtract::RunGoesOn() const { return job_->running() || context_.tmrExtract.enabled(); }

// Not inside an opening, an export or the writing of a web page, whose pumps the whole run would be nested in.
bool frmExtract::MayStart() const {
  return cmdExtract.enabled() && opening_ == 0 && !exporting_ && !starting_ && !RunGoesOn() &&
         !context_.collection.writing_page();
}

void frmExtract::cmdExtract_Click() {
  if (cmdExtract.text() == kStopCaption) {
    StopRun();
  } else if (MayStart()) {
    OpenPicked();
    starting_ = true;
    StartRun();
    starting_ = false;
    FollowSetting();
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
  const Status suppression = context_.engine.ReadSuppression();
  WarnOnFailure(suppression);
  if (!suppression.ok()) return false;
  // A project without files, once more: with the language or the memory that there is by now.
  const bool is_open = job_->HasFiles() && job_->TakeOutSuppressed();
  if (!is_open && (!cmbURL_Change() || cmbURL.text().empty())) return false;
  const Status can = job_->CheckCanBeSaved();
  WarnOnFailure(can);
  if (!can.ok()) return false;
  AddCurrentProject();
  return job_->HasFiles();  // memory may not hold it under its name with a language
}

void frmExtract::StopRun() {
  cmdExtract.SetText(kExtractCaption);
  cmdExtract.SetEnabled(false);
  job_->Stop();
}

// --- Projects ---

// Opens the project. Returns false for one that does not fit into memory, after a message.
bool frmExtract::cmbURL_Change() {
  if (RunGoesOn()) return true;
  ++opening_;
  cmdExtract.SetEnabled(false);
  bool opened = true;
  try {
    job_->Open(cmbURL.text());
  } catch (const std::bad_alloc&) {
    opened = false;
    Warn(kEndNoMemory);
  }
  if (--opening_ == 0) {
    cmdExtract.SetEnabled(true);
    FollowSetting();
  }
  return opened;
}

void frmExtract::AddCurrentProject() {
  if (job_->AddText(cmbURL.text())) FillProjectCombo();
}

void frmExtract::FillProjectCombo() {
  const std::vector<std::string> entries = job_->Texts();
  cmbURL.SetItems(entries);
  if (!entries.empty()) cmbURL.SetText(entries.front());
}

void frmExtract::PickProject() {
  job_->PickText(cmbURL.text());
  cmbURL.SetItems(job_->Texts());
  tmrText.SetEnabled(true);
}

void frmExtract::tmrText_Tick() {
  tmrText.SetEnabled(false);
  const std::vector<std::string> entries = job_->Texts();
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

// Not while a web page is written, whose collection is open.
void frmExtract::DeleteProject() {
  if (context_.collection.writing_page() || std::exchange(deleting_, true)) return;
  OpenPicked();
  AskAndDelete();
  deleting_ = false;
  FollowSetting();
}

void frmExtract::AskAndDelete() {
  const BoxAnswer answer = context_.engine.platform.boxes.Show("Are you sure to delete it ?", kProductCaption,
                                                               BoxIcon::kExclamation, BoxButtons::kYesNo);
  if (answer != BoxAnswer::kYes || RunGoesOn() || starting_) return;
  const Status deleted = job_->DeleteFiles();
  job_->RemoveText(cmbURL.text());
  const std::vector<std::string> entries = job_->Texts();
  cmbURL.SetItems(entries);
  OpenText(entries.empty() ? cmbURL.text() : entries.front());  // without files, the text's project is an empty one
  job_->StoreTexts();
  if (job_->Texts().empty()) {
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
  FollowSetting();
}

void frmExtract::OpenReportInEditor() {
  const Platform& platform = context_.engine.platform;
  job_->FinishLoading();
  if (job_->found().Count() < 1) {
    Warn("No eMail address found");
    return;
  }
  const std::string report = job_->report();
  const Status saved = job_->WriteReport();
  WarnOnFailure(saved);
  if (!saved.ok() || !platform.files.FileExists(report)) return;  // it pumps, and the project may be deleted
  WarnOnFailure(platform.shell.Edit(report));
}

// A row that was read from a report of addresses alone has no page.
void frmExtract::OpenPage(std::uint32_t row) {
  const FoundAddresses& found = job_->found();
  if (row < found.Count() && !found.At(row).URL.empty()) {
    OpenWebPage(context_.engine.platform.shell, found.At(row).URL);
  }
}

// --- Other windows ---

void frmExtract::ShowDialog(ui::Form& dialog) {
  if (RunGoesOn()) {
    dialog.Show();
  } else {
    dialog.ShowModal();
  }
}

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
  cmdDelete.SetEnabled(!job_->Texts().empty());
  if (links_visited) cmdExport.SetEnabled(true);
  ShowStage("Extract process ended at " + context_.engine.platform.clock.TimeText());
}

void frmExtract::RunOver() {
  context_.mnuExit.SetEnabled(true);
  FollowSetting();
}

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
