#include "cli/extract_run.h"

#include <chrono>
#include <memory>
#include <set>
#include <utility>

#include "base/ascii.h"
#include "base/status.h"
#include "cli/exit_status.h"
#include "cli/json_text.h"
#include "cli/progress_line.h"
#include "cli/terminal_text.h"
#include "engine/engine.h"
#include "platform/event_loop.h"
#include "platform/interface_table.h"
#include "platform/registry.h"
#include "project/save_check.h"
#include "run/end_reasons.h"

namespace quenlar {
namespace {

// For --assume-online: the real rows, and no doubt about the network.
class AssumedOnline final : public InterfaceTable {
 public:
  explicit AssumedOnline(InterfaceTable& table) : table_(table) {}
  TableOutcome Read(std::vector<InterfaceRow>& rows) override { return table_.Read(rows); }
  bool IsOnline() override { return true; }

 private:
  InterfaceTable& table_;
};

Platform WithInterfaces(const Platform& p, InterfaceTable& interfaces) {
  return {p.loop,  p.fetcher, p.registry, interfaces, p.files,       p.code_page,
          p.clock, p.shell,   p.boxes,    p.idna,     p.text_decoder};
}

class ExtractRun final : public RunView, public RunHost, public ProjectView {
 public:
  ExtractRun(Console& console, Workplace& place, const ExtractOptions& options)
      : console_(console),
        options_(options),
        input_text_(options.text),
        assumed_(place.platform.interfaces),
        progress_(console),
        engine_(WithInterfaces(place.platform, options.assume_online ? assumed_ : place.platform.interfaces),
                place.installation, {*this, *this, *this}) {}

  ExtractResult Run();

  // The Stop button.
  void Stop() {
    stop_pressed_ = true;
    if (engine_.run.running) engine_.run.stop_requested = true;
  }

  // RunView.
  void ShowStage(const std::string& text) override;
  void ShowAddressCount(std::uint32_t) override { Redraw(); }
  void ShowScanCount(std::int64_t) override { Redraw(); }
  void AddRow(std::uint32_t index, bool) override;

  // RunHost.
  [[nodiscard]] bool StopPressed() const override { return stop_pressed_; }
  void RunEnded(const std::string& reason) override;
  void DataSaved(const Status& saved) override { TellSave(saved); }
  void ReportSaved(const Status& saved) override { TellSave(saved); }

  // ProjectView.
  void ProjectReady() override { ShowStage(kReadyStage); }
  void InputText(const std::string& text) override { input_text_ = text; }

 private:
  bool Prepare();
  void OverrideSettings();
  void RecordInProjectList(int language_of_run);
  void RunToTheEnd();
  void TellWhatWasNotRecognised();
  void TellOfTodaysWeb();
  void Refuse(int status, const std::string& reason);
  void TellSave(const Status& saved);
  void TellOnce(const std::string& message);
  void Redraw();
  [[nodiscard]] int StatusOfEnd() const;

  Console& console_;
  const ExtractOptions& options_;
  std::string input_text_;  // what names the project
  AssumedOnline assumed_;
  ProgressLine progress_;
  ExtractResult result_;
  std::string stage_;
  std::set<std::string> told_;
  bool stop_pressed_ = false;
  bool nobody_reads_ = false;
  bool save_failed_ = false;
  Engine engine_;  // dies first: what it cancels then is still shown
};

ExtractResult ExtractRun::Run() {
  const auto started = std::chrono::steady_clock::now();
  if (Prepare()) RunToTheEnd();
  result_.data_file = engine_.project.DataFile;
  result_.report_file = engine_.project.ReportFile;
  result_.addresses = engine_.project.found.Count();
  result_.scanned = engine_.run.ScanCount;
  result_.seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - started).count();
  return result_;
}

// Pumps. False, with the reason told, when there is no run to be made.
bool ExtractRun::Prepare() {
  const Engine::StartNotes notes = engine_.Start();
  if (!notes.folders.ok()) {
    Refuse(kExitFailed, SentenceOf(notes.folders));
    return false;
  }
  if (!notes.suppression.ok()) {
    Refuse(kExitFailed, SentenceOf(notes.suppression));
    return false;
  }
  if (!notes.notes.empty()) TellOnce(notes.notes);
  if (!engine_.platform.interfaces.IsOnline()) {
    Refuse(kExitOffLine, kEndOffLine);
    return false;
  }
  if (options_.text.empty()) {
    Refuse(kExitFailed, "Please enter keyword or URL !");
    return false;
  }
  if (StartsWithIgnoreCase(options_.text, "https://")) TellOfTodaysWeb();
  const Settings stored = engine_.settings;
  OverrideSettings();
  engine_.projects.OpenProject(options_.text);
  if (const Status can = CheckCanBeSaved(engine_.platform.files, engine_.project); !can.ok()) {
    Refuse(kExitFailed, SentenceOf(can));
    return false;
  }
  const Settings overridden = std::exchange(engine_.settings, stored);
  RecordInProjectList(overridden.SearchLanguage);
  engine_.settings = overridden;
  const Status recorded = engine_.platform.registry.Flush();
  if (!recorded.ok()) TellSave({recorded.kind(), SentenceOf(recorded)});
  engine_.projects.OnSaveFailure([this](const Status& failure) { TellSave(failure); });
  // The command line fetches nothing that nobody has asked for.
  engine_.settings.NeverUpgradeFlag = 1;
  return true;
}

void ExtractRun::OverrideSettings() {
  Settings& settings = engine_.settings;
  Apply(options_.overrides, settings);
  if (!options_.remove_words.empty()) {
    settings.RemoveFilterOn = 1;
    engine_.filter.RemoveFilterWords = options_.remove_words;
  }
  if (!options_.extract_words.empty()) {
    settings.ExtractFilterOn = 1;
    engine_.filter.ExtractFilterWords = options_.extract_words;
  }
  engine_.filter.OnStepLimit([this](const std::string& message) { TellOnce(message); });
  for (const std::string& message : engine_.filter.BuildFilterPatterns()) TellOnce(message);
}

// As the window does when a run starts. The settings at hand are the stored ones, since they are written too; the
// language of a keyword is that of the run.
void ExtractRun::RecordInProjectList(int language_of_run) {
  const bool is_keyword = engine_.project.IsKeywordProject;
  engine_.project_list.Add(ListedName(input_text_, is_keyword, language_of_run), is_keyword);
}

void ExtractRun::RunToTheEnd() {
  const std::uint32_t loaded = engine_.project.found.Count();
  const auto alarm = engine_.platform.loop.MakeTimer(std::chrono::seconds(1), [this] {
    engine_.watchdog.Tick();
    Redraw();
  });
  alarm->SetEnabled(true);
  engine_.driver.Run();
  alarm->SetEnabled(false);
  progress_.Clear();
  result_.found_in_run = engine_.project.found.Count() - loaded;
  result_.status = StatusOfEnd();
  TellWhatWasNotRecognised();
  // Of a site that has only such links nothing is queued but its start.
  std::uint32_t queued = 0;
  for (const LinkQueue& queue : engine_.project.queues) queued += queue.Count();
  const bool no_link = queued <= 1;
  if (!engine_.project.IsKeywordProject && no_link && engine_.project.secure_links > 0) TellOfTodaysWeb();
}

void ExtractRun::TellOfTodaysWeb() {
  if (!nobody_reads_) TellOnce("extract follows no https links; `quenlar collect` reads today's web.");
}

int ExtractRun::StatusOfEnd() const {
  if (save_failed_ || result_.reason == kEndNoMemory) return kExitFailed;
  if (result_.reason == kEndOffLine) return kExitOffLine;
  if (result_.reason == kEndStopButton) return kExitStopped;
  return kExitDone;
}

// A search page that is no list of results (a block page, a page that asks for consent) looks like an empty list.
void ExtractRun::TellWhatWasNotRecognised() {
  const bool search_alone = engine_.project.IsKeywordProject && engine_.run.ScanCount == 0;
  if (search_alone && result_.reason == kEndAllParsed && engine_.project.queues[0].Count() == 0) {
    TellOnce("No search result was recognised !");
  }
}

void ExtractRun::AddRow(std::uint32_t index, bool) {
  if (!engine_.run.running || nobody_reads_) return;  // what is loaded is not new
  progress_.Clear();
  std::string line = FormatAddress(engine_.project.found.At(index), options_.format);
  if (console_.OutputIsTerminal()) line = ForTerminal(std::string_view(line).substr(0, line.size() - 1)) + "\n";
  if (console_.Write(line)) return;
  nobody_reads_ = true;
  Stop();
}

void ExtractRun::ShowStage(const std::string& text) {
  stage_ = text;
  Redraw();
}

void ExtractRun::RunEnded(const std::string& reason) {
  result_.reason = reason;
  if (!nobody_reads_) TellOnce(reason);
}

void ExtractRun::Refuse(int status, const std::string& reason) {
  result_.status = status;
  result_.reason = reason;
  TellOnce(reason);
}

void ExtractRun::TellSave(const Status& saved) {
  if (saved.ok()) return;
  save_failed_ = true;
  TellOnce(saved.message());
}

void ExtractRun::TellOnce(const std::string& message) {
  if (!told_.insert(message).second) return;
  progress_.Clear();
  Invocation::SayOn(console_, message);
}

void ExtractRun::Redraw() {
  if (!progress_.on() || !engine_.run.running) return;
  ProgressLine::Figures figures;
  figures.addresses = engine_.project.found.Count();
  figures.scanned = engine_.run.ScanCount;
  for (const LinkQueue& queue : engine_.project.queues) {
    figures.links += queue.Count();
    figures.visited += queue.Next();
  }
  figures.stage = stage_;
  progress_.Draw(figures);
}

}  // namespace

ExtractResult RunExtract(Console& console, Workplace& place, const ExtractOptions& options,
                         const StopWatcher& watch_stop) {
  const auto run = std::make_shared<ExtractRun>(console, place, options);
  watch_stop([running = std::weak_ptr<ExtractRun>(run)] {
    if (const auto still = running.lock()) still->Stop();
  });
  return run->Run();
}

std::string SummaryText(const ExtractResult& result) {
  return JsonLine({{"reason", result.reason},
                   {"addresses", result.addresses},
                   {"new", result.found_in_run},
                   {"scanned", result.scanned},
                   {"DataFile", result.data_file},
                   {"ReportFile", result.report_file},
                   {"seconds", result.seconds}});
}

}  // namespace quenlar
