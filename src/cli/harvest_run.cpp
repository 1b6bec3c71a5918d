#include "cli/harvest_run.h"

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <memory>
#include <thread>
#include <utility>

#include "archive/harvest.h"
#include "base/ascii.h"
#include "base/number.h"
#include "cli/exit_status.h"
#include "cli/harvest_store.h"
#include "cli/json_text.h"
#include "cli/load_suppression.h"
#include "cli/paths.h"
#include "cli/run_filter.h"
#include "cli/seen_addresses.h"
#include "cli/sighting_format.h"
#include "cli/terminal_text.h"
#include "cli/workplace.h"
#include "engine/collections.h"
#include "engine/erase_suppressed.h"
#include "engine/home.h"
#include "page/unwanted_addresses.h"
#include "platform/clock.h"
#include "platform/event_loop.h"
#include "platform/registry.h"

namespace quenlar {
namespace {

constexpr std::size_t kMostRows = 8u << 20;  // bytes of rows that wait for a commit

class ConsoleSource final : public ByteSource {
 public:
  explicit ConsoleSource(Console& console) : console_(console) {}
  [[nodiscard]] Result<std::size_t> Read(char* buffer, std::size_t size) override {
    return console_.Read(buffer, size);
  }

 private:
  Console& console_;
};

class HarvestRun final : public HarvestView {
 public:
  HarvestRun(Invocation& invocation, const Platform& platform, const HarvestOptions& options)
      : invocation_(invocation),
        console_(invocation.console()),
        platform_(platform),
        options_(options),
        filter_(settings_) {}

  HarvestResult Run();
  void Stop() { stopped_ = true; }

  [[nodiscard]] std::optional<HarvestPlace> PlaceOf(const HarvestInput& input, const ReadableFile* file) override;
  [[nodiscard]] bool OnPortion(const HarvestInput& input, HarvestPortion& portion) override;
  [[nodiscard]] bool OnInputEnd(const InputReport& report) override;
  void OnFailure(const Status& failure) override {
    ++unread_;
    all_done_ = false;
    Complain(SentenceOf(failure));
  }

 private:
  [[nodiscard]] Status Prepare();
  [[nodiscard]] Status OpenStore();
  [[nodiscard]] bool NamesSuppressed(std::string_view text);
  void TakePage(const HarvestedPage& page);
  void AddRow(const HarvestedPage& page, const SeenAddress& address);
  // Commits when it is time to, or `now`, and writes what need not wait any more. False when nobody reads it, or it
  // cannot be put into the collection.
  [[nodiscard]] bool Flush(bool now);
  void SaveRun();
  // Whether it has ended before all of its inputs, and not because somebody stopped it.
  [[nodiscard]] bool IsCutOff() const { return nobody_reads_ || (store_ && !store_->failure().ok()); }
  [[nodiscard]] const char* Reason() const { return stopped_ ? "stopped" : IsCutOff() ? "failed" : "finished"; }
  [[nodiscard]] HarvestResult Outcome() const;
  void Tell(const std::string& text);
  // Tells a failure.
  void Complain(const std::string& text);
  void TellEnd();
  void DrawProgress(const HarvestInput& input);
  void ClearProgress();

  Invocation& invocation_;
  Console& console_;
  const Platform& platform_;
  const HarvestOptions& options_;
  std::unique_ptr<FolderLock> lock_;
  std::unique_ptr<HarvestStore> store_;
  Settings settings_;
  FilterWords filter_;
  SuppressionList suppression_;
  SeenAddresses seen_;
  std::int64_t now_ = 0;
  std::string rows_;           // that have not been written yet
  std::string undated_input_;  // the last one with records without a date
  std::uint64_t pages_ = 0, pages_with_addresses_ = 0, addresses_ = 0, new_ = 0, filtered_ = 0, suppressed_ = 0;
  std::uint64_t damaged_ = 0, other_ = 0, unread_ = 0;
  bool all_done_ = true;  // no input is left to another try
  bool failed_ = false, stopped_ = false, nobody_reads_ = false, progress_drawn_ = false;
  std::chrono::steady_clock::time_point progress_last_{};
};

Status HarvestRun::Prepare() {
  now_ = platform_.clock.UtcSeconds();
  if (!invocation_.choice().home.empty()) {
    const auto tell = [this](const std::string& message) { Tell(message); };
    const Status loaded = LoadRunFilter(platform_, invocation_.installation(), options_.remove_words,
                                        options_.extract_words, settings_, filter_, tell);
    if (!loaded.ok()) return loaded;
  }
  Result<SuppressionList> suppression = LoadSuppression(invocation_, platform_);
  if (!suppression.ok()) return suppression.status();
  suppression_ = suppression.take();
  return options_.name.empty() ? Status::Ok() : OpenStore();
}

Status HarvestRun::OpenStore() {
  const Installation installation = invocation_.installation();
  auto lock = TakeHome(platform_.files, installation);
  if (!lock.ok()) return lock.status();
  lock_ = lock.take();
  if (Status made = MakeFolders(platform_.files, installation.Data(), installation.separator); !made.ok()) return made;
  const std::string path = CollectionPath(installation, options_.name);
  std::vector<std::string> notices;
  if (Status erased = EraseSuppressed(platform_.files, path, suppression_, notices); !erased.ok()) return erased;
  for (const std::string& notice : notices) Tell(notice + ".");
  auto opened = Collection::Open(platform_.files, path);
  if (!opened.ok()) return opened.status();
  if (!opened.value().kept_aside.empty()) {
    Tell("The collection was damaged. It lies in " + opened.value().kept_aside + " now, and a new one begins.");
  }
  store_ = std::make_unique<HarvestStore>(std::move(opened.value().collection), platform_.idna,
                                          std::string(options_.decode_protected ? "protected " : "") +
                                              (options_.obey_robots ? "obey " : "ignore ") + filter_.Text());
  return store_->BeginRun(now_);
}

HarvestResult HarvestRun::Run() {
  if (const Status prepared = Prepare(); !prepared.ok()) return {invocation_.Fail(prepared), "failed"};
  std::vector<HarvestInput> inputs;
  for (const std::string& given : options_.inputs) inputs.push_back({given, given == "-" ? "" : AbsolutePath(given)});
  const std::size_t cores = std::max(1u, std::thread::hardware_concurrency());
  HarvestSettings settings{options_.jobs > 0 ? options_.jobs : cores,
                           {platform_.idna, platform_.text_decoder, options_.decode_protected, options_.obey_robots}};
  ConsoleSource standard_input(console_);
  InputWalk walk(platform_.files, std::move(inputs), invocation_.system().separator());
  Harvest(platform_.files, standard_input, settings, *this).Run(walk);
  SaveRun();
  (void)Flush(true);
  if (nobody_reads_ && store_) {  // that may have shown at the last rows, behind the commit
    SaveRun();
    (void)store_->Commit(true);
  }
  ClearProgress();
  if (!nobody_reads_) TellEnd();
  return Outcome();
}

HarvestResult HarvestRun::Outcome() const {
  return {stopped_  ? kExitStopped
          : failed_ ? kExitFailed
                    : kExitDone,
          Reason(),
          addresses_,
          pages_,
          filtered_,
          suppressed_,
          damaged_,
          other_,
          unread_};
}

std::optional<HarvestPlace> HarvestRun::PlaceOf(const HarvestInput& input, const ReadableFile* file) {
  return store_ ? store_->PlaceOf(input, file) : HarvestPlace{};
}

bool HarvestRun::OnPortion(const HarvestInput& input, HarvestPortion& portion) {
  pages_ += portion.counts.pages;
  for (HarvestedPage& page : portion.pages) {
    if (!page.seen) {
      page.seen = now_;
      if (page.of_record && undated_input_ != input.name) {
        undated_input_ = input.name;
        Tell(input.name + ": Records without a date count as seen now.");
      }
    }
    // A page whose address names a suppressed one is passed over, as a run never visits it. The name of a file is the
    // user's own, and a folder may well be named after an address.
    if (page.of_record && NamesSuppressed(page.url)) continue;
    if (NamesSuppressed(page.title)) page.title.clear();
    TakePage(page);
  }
  if (store_ && portion.failure.ok()) store_->Note(input, portion.behind, portion.damaged);
  if (!Flush(rows_.size() > kMostRows)) return false;
  DrawProgress(input);
  platform_.loop.Yield();
  return !stopped_;
}

bool HarvestRun::NamesSuppressed(std::string_view text) {
  return NextUnwanted(text, [this](std::string_view address) { return suppression_.Keeps(address); }).has_value();
}

void HarvestRun::TakePage(const HarvestedPage& page) {
  ++pages_with_addresses_;
  std::vector<SeenAddress> kept;    // in all of their places
  std::vector<std::size_t> firsts;  // of these, each address in its first place
  std::size_t filtered = 0;
  for (const HarvestedPage::Address& address : page.addresses) {
    const std::string_view text = page.AddressOf(address);
    if (!filter_.Keeps(text)) {
      if (address.first) ++filtered;
    } else if (!suppression_.Keeps(text)) {
      if (address.first) ++suppressed_;
    } else {
      if (address.first) firsts.push_back(kept.size());
      kept.push_back({text, page.WrittenOf(address), address.place});
    }
  }
  filtered_ += filtered;
  std::vector<std::size_t> fresh;
  if (store_ && !kept.empty()) fresh = store_->Add(page, kept, filtered);
  new_ += fresh.size();
  const bool lines = options_.format == AddressFormat::kLines;
  for (const std::size_t i : lines&& store_ ? fresh : firsts) {
    if (!lines || store_ || seen_.Add(kept[i].address)) AddRow(page, kept[i]);
  }
}

void HarvestRun::AddRow(const HarvestedPage& page, const SeenAddress& address) {
  ++addresses_;
  Sighting sighting;
  sighting.address = address.address;
  sighting.page = page.url;
  sighting.title = page.title;
  sighting.place = PlaceName(address.place);
  sighting.first_seen = *page.seen;
  std::string line = FormatSighting(sighting, options_.format);
  if (console_.OutputIsTerminal()) line = ForTerminal(std::string_view(line).substr(0, line.size() - 1)) + "\n";
  rows_ += line;
}

bool HarvestRun::Flush(bool now) {
  if (nobody_reads_) return false;
  if (store_) {
    const bool committed = store_->Commit(now);
    if (!store_->failure().ok()) {
      if (!failed_) Complain(SentenceOf(store_->failure()));
      rows_.clear();
      return false;
    }
    if (!committed) return true;
  }
  if (rows_.empty()) return true;
  ClearProgress();
  nobody_reads_ = !console_.Write(rows_);
  rows_.clear();
  return !nobody_reads_;
}

void HarvestRun::SaveRun() {
  if (!store_) return;
  RunRecord run;
  run.started = now_;
  run.ended = platform_.clock.UtcSeconds();
  run.reason = Reason();
  run.pages = pages_;
  run.fresh = new_;
  run.filtered = filtered_;
  run.seconds = static_cast<double>(run.ended - now_);
  store_->SaveRun(run).Ignore("a failure is seen by the commit");
}

bool HarvestRun::OnInputEnd(const InputReport& report) {
  const std::string& name = report.input.name;
  // What cannot be read now may be read by a later try, or by another version of the program.
  InputEnd end = InputEnd::kDone;
  if (!report.failure.ok()) {
    end = InputEnd::kCutOff;
    ++unread_;
    Complain(SentenceOf(report.failure));
  } else if (report.kind == InputKind::kArc) {
    end = InputEnd::kNotRead;
    Complain(name + ": An ARC file, the format before WARC. It is not read.");
  } else if (report.kind == InputKind::kZstd) {
    end = InputEnd::kNotRead;
    Complain(name + ": It is packed by zstd, which is not read.");
  } else if ((report.kind == InputKind::kOther || report.kind == InputKind::kGzip) && report.input.named) {
    end = InputEnd::kNotRead;
    ++other_;
    Complain(name + ": Neither an archive nor a page of text.");
  }
  const std::size_t damaged = report.damaged + (store_ ? store_->NoteEnd(report.input, end) : 0);
  damaged_ += damaged;
  all_done_ = all_done_ && end == InputEnd::kDone;
  if (damaged > 0) {
    Complain(name + ": " + Counted(damaged, "damaged record") + ". Everything readable has been read.");
  }
  return !stopped_;
}

void HarvestRun::TellEnd() {
  if (store_ && store_->finished_before() > 0) {
    const bool all = pages_ == 0 && all_done_;
    const std::size_t before = store_->finished_before();
    const std::string what = damaged_ == 0 ? "everything" : "everything readable";
    Tell(all ? "This harvest is finished: " + what + " in its inputs is in the collection."
             : Counted(before, "input") + (before == 1 ? " was" : " were") + " read before.");
    if (all) return;
  }
  std::string line = Counted(addresses_, "address", "es") + " on " + std::to_string(pages_with_addresses_) + " of " +
                     Counted(pages_, "page");
  if (filtered_ > 0) line += ", " + std::to_string(filtered_) + " dropped by the filters";
  if (suppressed_ > 0) line += ", " + std::to_string(suppressed_) + " suppressed";
  Tell(line + ".");
}

void HarvestRun::Tell(const std::string& text) {
  ClearProgress();
  Invocation::SayOn(console_, text);
}

void HarvestRun::Complain(const std::string& text) {
  failed_ = true;
  Tell(text);
}

void HarvestRun::DrawProgress(const HarvestInput& input) {
  constexpr std::chrono::milliseconds kRedrawEvery{200};
  const auto now = std::chrono::steady_clock::now();
  if (!options_.progress || !console_.ErrorIsTerminal() || now - progress_last_ < kRedrawEvery) return;
  progress_last_ = now;
  progress_drawn_ = true;
  const std::string text =
      ForTerminal(Counted(addresses_, "address", "es") + ", " + Counted(pages_, "page") + "  " + input.name);
  console_.WriteError("\r" + std::string(FirstColumns(text, console_.ErrorColumns() - 1)) + "\x1B[K");
}

void HarvestRun::ClearProgress() {
  if (!progress_drawn_) return;
  progress_drawn_ = false;
  console_.WriteError("\r\x1B[K");
}

}  // namespace

HarvestResult RunHarvest(Invocation& invocation, const HarvestOptions& options) {
  const Result<Platform> platform = invocation.system().Open(invocation.choice());
  if (!platform.ok()) return {invocation.Fail(platform.status()), "failed"};
  const auto run = std::make_shared<HarvestRun>(invocation, platform.value(), options);
  invocation.system().OnStop([weak = std::weak_ptr(run)] {
    if (const auto stopping = weak.lock()) stopping->Stop();
  });
  return run->Run();
}

std::string SummaryText(const HarvestResult& result) {
  return JsonLine({{"reason", result.reason},
                   {"addresses", result.addresses},
                   {"pages", result.pages},
                   {"filtered", result.filtered},
                   {"suppressed", result.suppressed},
                   {"damaged", result.damaged},
                   {"other", result.other},
                   {"unread", result.unread}});
}

}  // namespace quenlar
