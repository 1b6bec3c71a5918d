#include "project/project_store.h"

#include <memory>
#include <new>
#include <utility>

#include "base/product.h"
#include "platform/code_page.h"
#include "platform/files.h"
#include "platform/message_boxes.h"
#include "project/data_file.h"
#include "project/project_name.h"

namespace quenlar {
namespace {

constexpr std::uint64_t kMaxReportBytes = 2u << 30;
constexpr const char* kNoMemory = "not enough memory";

// Of a suffix that is not one of the languages'.
std::string UnknownSuffixText() {
  std::string codes;
  for (const Language& language : kLanguages) {
    codes += (codes.empty() ? "" : ",") + ("\"_" + std::string(language.code) + "\"");
  }
  return "We will delete any lettes behind \"_\", except " + codes;
}

// "<path> cannot be saved: <reason> !"
Status Sentence(const Status& status, const std::string& path, const char* what) {
  if (status.ok() || status.kind() == StatusKind::kLimit) return status;
  std::string reason = status.message();
  if (reason.starts_with(path + ": ")) reason.erase(0, path.size() + 2);
  return {status.kind(), path + " cannot be " + what + ": " + reason + " !"};
}

// Returns the text of the report in UTF-8. A report that does not fit into memory counts as one that cannot be read.
Result<std::string> ReadReportText(const Platform& platform, const std::string& path) {
  try {
    auto bytes = ReadWhole(platform.files, path, kMaxReportBytes);
    if (!bytes.ok()) return bytes;
    return platform.code_page.ToUtf8(bytes.take());
  } catch (const std::bad_alloc&) {
    return Status(StatusKind::kLimit, path + ": " + kNoMemory);
  }
}

}  // namespace

ProjectStore::ProjectStore(const Platform& platform, Project& project, const Settings& settings,
                           const Installation& installation, RunView& view, ProjectView& project_view, Pump::Pace pace)
    : platform_(platform),
      project_(project),
      settings_(settings),
      installation_(installation),
      view_(view),
      project_view_(project_view),
      pump_(platform.loop, pace) {}

// ---- opening ----

// A project that does not fit into memory is not opened. What has been loaded of it must not replace its whole files.
void ProjectStore::OpenProject(std::string_view text) {
  const std::uint64_t opening = openings_ + 1;
  try {
    Open(std::string(text));
  } catch (const std::bad_alloc&) {
    if (openings_ <= opening) {  // not taken over by another
      reader_ = nullptr;
      project_.DataFile.clear();
      project_.ReportFile.clear();
    }
    throw;
  }
}

void ProjectStore::Open(const std::string& typed) {
  const std::uint64_t opening = ++openings_;
  project_view_.ProjectClosed();
  project_.ProjectLoaded = false;
  FinishSaves();
  if (NameProject(project_, typed, settings_, installation_) == NamingOutcome::kUnknownSuffix) {
    platform_.boxes.Show(UnknownSuffixText(), kProductCaption, BoxIcon::kExclamation, BoxButtons::kOk);
    if (opening == openings_) OpenFirstPiece(typed);
    return;
  }
  Clear();
  if (!LoadLinks(opening)) return;
  const bool has_report = platform_.files.FileExists(project_.ReportFile);
  report_.keep_old = false;
  if (has_report && !LoadReport(opening)) return;
  project_view_.ProjectFiles(platform_.files.FileExists(project_.DataFile), has_report);
  view_.ShowStage("Load data finished ");
  view_.ShowAddressCount(project_.found.Count());
  view_.ShowScanCount(0);
  project_.ProjectLoaded = true;
  project_view_.ProjectReady();
}

void ProjectStore::OpenFirstPiece(const std::string& typed) {
  const std::uint64_t opening = openings_;
  const std::string piece = typed.substr(0, typed.find('_'));
  project_view_.InputText(piece);
  if (opening == openings_) OpenProject(piece);
}

void ProjectStore::Clear() {
  view_.ClearRows();
  project_.found.Clear();
  project_.search_page.clear();
  project_.result_offset = 0;
  project_.secure_links = 0;
  project_.report_holds_more = false;
  reported_ = 0;
  for (LinkQueue& queue : project_.queues) queue.Clear();
  reader_ = nullptr;
}

// False when another opening has taken over.
bool ProjectStore::LoadLinks(std::uint64_t opening) {
  const DataFileContents contents =
      ReadDataFile(platform_.files, platform_.code_page, project_.DataFile, project_.queues, [&] {
        ProgressTick();
        return opening == openings_;
      });
  if (opening != openings_) return false;
  data_.keep_old = contents == DataFileContents::kOtherHeader || contents == DataFileContents::kCutShort ||
                   platform_.files.FolderExists(project_.DataFile);
  const bool is_new = contents == DataFileContents::kOtherHeader || contents == DataFileContents::kMissing;
  if (is_new && project_.IsKeywordProject) {
    project_.search_page = project_.StartURL;
    project_.queues[0].AddIfNew(project_.StartURL);
  }
  return true;
}

bool ProjectStore::LoadReport(std::uint64_t opening) {
  auto read = ReadReportText(platform_, project_.ReportFile);
  report_.keep_old = !read.ok();
  const std::string text = read.ok() ? read.take() : std::string();
  ReportReader reader(text, suppression_);
  std::uint32_t taken = 0;
  reader_ = &reader;
  while (reader.Advance()) {
    pump_();
    if (opening != openings_) return false;
    reader.Take(project_.found);
    ++taken;
  }
  reader_ = nullptr;
  reported_ = taken;
  project_.report_holds_more = reader.passed_over();
  // Where one of the pumps has loaded the rest, the list starts anew.
  if (taken != project_.found.Count()) view_.ClearRows();
  for (std::uint32_t i = 0; i < project_.found.Count(); ++i) view_.AddRow(i, false);
  return true;
}

void ProjectStore::FinishLoading() {
  if (reader_ != nullptr) reader_->FinishNow(project_.found);
}

void ProjectStore::TakeOutSuppressed(const std::function<std::string(std::string_view)>& clean) {
  FinishSaves();
  if (suppression_ == nullptr) return;
  const auto names_one = [&](std::string_view url) { return clean(url).size() < url.size(); };
  for (LinkQueue& queue : project_.queues) queue.RemoveUnvisited(names_one);
  const bool pages_changed = project_.found.CleanPages(clean);
  if (project_.found.RemoveUnwanted(*suppression_) == 0 && !pages_changed) return;
  project_.report_holds_more = true;
  view_.ClearRows();
  for (std::uint32_t i = 0; i < project_.found.Count(); ++i) view_.AddRow(i, project_.found.At(i).TagOnly);
  view_.ShowAddressCount(project_.found.Count());
}

void ProjectStore::ProgressTick() {
  if (progress_ == 20) view_.ShowStage("Load data ..");
  if (progress_ == 40) view_.ShowStage("Load data ....");
  if (progress_ == 60) view_.ShowStage("Load data ......");
  if (++progress_ > 60) progress_ = 0;
}

// ---- saving ----

Status ProjectStore::WriteData() { return Write(data_); }

Status ProjectStore::WriteReport() { return Write(report_); }

// Pumps, unless a save of the report is under way: that one began too early, so it is ended and the next one made.
Status ProjectStore::BringReportUpToDate() {
  if (!ReportIsBehind()) return Status::Ok();
  if (report_.under_way == nullptr) return WriteReport();
  report_.again = true;
  return FinishSave(report_);
}

// No page may leave the data file before its addresses are on the disk. The exception is a table with more addresses
// than a report takes: without it such a run could not be continued.
bool ProjectStore::KeepsDataBack(const Status& report) { return !report.ok() && report.kind() != StatusKind::kLimit; }

bool ProjectStore::ReportIsBehind() const {
  if (project_.report_holds_more) return true;
  const std::uint32_t count = project_.found.Count();
  return count != 0 && (count != reported_ || !platform_.files.FileExists(project_.ReportFile));
}

void ProjectStore::SaveProjectData() { Show(WriteData()); }
void ProjectStore::SaveProjectReport() {
  if (ReportIsBehind()) Show(WriteReport());
}

void ProjectStore::Show(const Status& failure) {
  if (failure.ok()) return;
  view_.ShowStage(failure.message());
  if (on_save_failure_) on_save_failure_(failure);
}

const std::string& ProjectStore::PathOf(const Save& save) const {
  return save.file == File::kData ? project_.DataFile : project_.ReportFile;
}

Status ProjectStore::Write(Save& save) {
  if (PathOf(save).empty()) return Status::Ok();
  if (save.under_way != nullptr) {
    save.again = true;
    return Status::Ok();
  }
  FinishLoading();
  Status status;
  do {
    save.again = false;
    status = WriteOnce(save);
  } while (save.again && save.under_way == nullptr);
  return status;
}

// A save for which there is no memory has failed, and the run goes on, as after one for which there is no disk space.
Status ProjectStore::WriteOnce(Save& save) {
  std::string path;
  try {
    path = PathOf(save);
    auto started = Start(save);
    if (!started.ok()) return Sentence(started.status(), path, "saved");
    RecordWriter& writer = *started.value();
    const Status advanced = Advance(save, writer);
    return advanced.ok() ? Commit(save, writer, path) : advanced;
  } catch (const std::bad_alloc&) {
    return Sentence({StatusKind::kFailed, kNoMemory}, path, "saved");
  }
}

// Pumps. Whatever ends it, what is said to be under way is.
//
// A data file drops the links of the pages that were done when its save began. Their addresses must be on the disk
// before it is, so that a program that dies between the two visits a page again instead of losing what it found there.
Status ProjectStore::Advance(Save& save, RecordWriter& writer) {
  const auto over = [&save](RecordWriter* mine) {
    if (save.under_way == mine) save.under_way = nullptr;
  };
  const std::unique_ptr<RecordWriter, decltype(over)> under_way(save.under_way = &writer, over);
  if (save.file == File::kData) {
    save.waits_for_report = true;
    const Status report = BringReportUpToDate();
    save.waits_for_report = false;
    if (KeepsDataBack(report)) {
      writer.Discard();
      return report;
    }
  }
  while (writer.Advance()) {
    pump_();
    writer.Write();
  }
  return Status::Ok();
}

Result<std::unique_ptr<RecordWriter>> ProjectStore::Start(Save& save) {
  const std::string& path = PathOf(save);
  save.addresses = project_.found.Count();
  if (save.keep_old && platform_.files.FolderExists(path)) {
    auto kept = KeepAside(platform_.files, path);
    if (!kept.ok()) return kept.status();
  }
  if (save.file == File::kData) return StartDataFile(platform_.files, platform_.code_page, path, project_.queues);
  return StartReport(platform_.files, platform_.code_page, path, project_.found, settings_.ExportMode != 0);
}

Status ProjectStore::Commit(Save& save, RecordWriter& writer, const std::string& path) {
  if (writer.done()) return Sentence(writer.Commit(), path, "saved");  // code inside a pump has finished it
  const Status committed = Replace(save, writer, path);
  if (committed.ok() && save.file == File::kReport) {
    reported_ = save.addresses;
    project_.report_holds_more = false;
  }
  return committed;
}

Status ProjectStore::Replace(Save& save, RecordWriter& writer, const std::string& path) {
  if (!save.keep_old) return Sentence(writer.Commit(), path, "saved");
  auto kept = KeepAside(platform_.files, path);
  if (!kept.ok()) {
    writer.Discard();
    return Sentence(kept.status(), path, "saved");
  }
  const Status status = writer.Commit();
  if (status.ok()) {
    save.keep_old = false;
  } else if (!kept.value().empty()) {
    platform_.files.Rename(kept.value(), path).Ignore("the file is whole under its other name");
  }
  return Sentence(status, path, "saved");
}

// Finishes the save that is under way, or makes the one that was asked for meanwhile, without pumping.
Status ProjectStore::FinishSave(Save& save) {
  if (save.under_way == nullptr) return Status::Ok();
  RecordWriter& writer = *std::exchange(save.under_way, nullptr);
  writer.FinishNow();
  const Status committed = Commit(save, writer, PathOf(save));
  return std::exchange(save.again, false) ? WriteWithoutPumping(save) : committed;
}

void ProjectStore::GiveUp(Save& save) {
  if (save.under_way != nullptr) std::exchange(save.under_way, nullptr)->Discard();
  save.again = false;
}

void ProjectStore::FinishSaves() {
  const Status report = FinishSave(report_);
  Show(report);
  if (KeepsDataBack(report)) {
    if (data_.waits_for_report) GiveUp(data_);
    data_.again = false;
  }
  Show(FinishSave(data_));
}

Status ProjectStore::WriteWithoutPumping(Save& save) {
  auto started = Start(save);
  if (!started.ok()) return Sentence(started.status(), PathOf(save), "saved");
  started.value()->FinishNow();
  return Commit(save, *started.value(), PathOf(save));
}

void ProjectStore::SaveAtOnce() {
  if (project_.DataFile.empty()) return;
  FinishLoading();
  report_.again = data_.again = false;
  FinishSaves();
  const Status report = ReportIsBehind() ? WriteWithoutPumping(report_) : Status::Ok();
  Show(report);
  if (!KeepsDataBack(report)) Show(WriteWithoutPumping(data_));
}

Status ProjectStore::DeleteFiles() {
  Status first;
  for (Save* save : {&data_, &report_}) {
    GiveUp(*save);
    const std::string& path = PathOf(*save);
    if (!platform_.files.FileExists(path)) continue;
    const Status deleted = Sentence(platform_.files.Delete(path), path, "deleted");
    if (first.ok()) first = deleted;
  }
  return first;
}

}  // namespace quenlar
