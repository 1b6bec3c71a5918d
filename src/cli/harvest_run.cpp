#include "cli/harvest_run.h"

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <memory>
#include <thread>
#include <utility>

#include "archive/harvest.h"
#include "base/ascii.h"
#include "cli/exit_status.h"
#include "cli/paths.h"
#include "cli/run_filter.h"
#include "cli/seen_addresses.h"
#include "cli/sighting_format.h"
#include "cli/terminal_text.h"
#include "platform/clock.h"
#include "platform/event_loop.h"
#include "platform/registry.h"

namespace quenlar {
namespace {

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

  int Run();
  void Stop() { stopped_ = true; }

  [[nodiscard]] std::optional<HarvestPlace> PlaceOf(const HarvestInput& input, const ReadableFile* file) override;
  [[nodiscard]] bool OnPortion(const HarvestInput& input, HarvestPortion& portion) override;
  [[nodiscard]] bool OnInputEnd(const InputReport& report) override;
  void OnFailure(const Status& failure) override { Complain(SentenceOf(failure)); }

 private:
  void PrintPage(const HarvestedPage& page);
  void PrintAddress(const HarvestedPage& page, const HarvestedPage::Address& address);
  [[nodiscard]] bool Flush();
  void Tell(const std::string& text);
  // Tells a failure.
  void Complain(const std::string& text);
  void TellEnd();
  void DrawProgress(const HarvestInput& input, const HarvestPortion& portion);
  void ClearProgress();

  Invocation& invocation_;
  Console& console_;
  const Platform& platform_;
  const HarvestOptions& options_;
  Settings settings_;
  FilterWords filter_;
  SeenAddresses seen_;
  std::int64_t now_ = 0;
  std::string rows_;           // that have not been written yet
  std::string undated_input_;  // the last one with records without a date
  std::uint64_t pages_ = 0, pages_with_addresses_ = 0, addresses_ = 0, filtered_ = 0, protected_ = 0;
  bool failed_ = false, stopped_ = false, nobody_reads_ = false, progress_drawn_ = false;
  std::chrono::steady_clock::time_point progress_last_{};
};

int HarvestRun::Run() {
  now_ = platform_.clock.UtcSeconds();
  if (!invocation_.choice().home.empty()) {
    const auto tell = [this](const std::string& message) { Tell(message); };
    const Status loaded = LoadRunFilter(platform_, invocation_.installation(), options_.remove_words,
                                        options_.extract_words, settings_, filter_, tell);
    if (!loaded.ok()) return invocation_.Fail(loaded);
  }
  std::vector<HarvestInput> inputs;
  for (const std::string& given : options_.inputs) inputs.push_back({given, given == "-" ? "" : AbsolutePath(given)});
  const std::size_t cores = std::max(1u, std::thread::hardware_concurrency());
  HarvestSettings settings{options_.jobs > 0 ? options_.jobs : cores,
                           {platform_.idna, platform_.text_decoder, options_.decode_protected, options_.obey_robots}};
  ConsoleSource standard_input(console_);
  InputWalk walk(platform_.files, std::move(inputs), invocation_.system().separator());
  Harvest(platform_.files, standard_input, settings, *this).Run(walk);
  (void)Flush();
  ClearProgress();
  if (!nobody_reads_) TellEnd();
  return stopped_ ? kExitStopped : failed_ ? kExitFailed : kExitDone;
}

std::optional<HarvestPlace> HarvestRun::PlaceOf(const HarvestInput&, const ReadableFile*) { return HarvestPlace{}; }

bool HarvestRun::OnPortion(const HarvestInput& input, HarvestPortion& portion) {
  pages_ += portion.counts.pages;
  protected_ += portion.counts.protected_count;
  for (HarvestedPage& page : portion.pages) {
    if (!page.seen) {
      page.seen = now_;
      if (undated_input_ != input.name && page.url != input.name) {
        undated_input_ = input.name;
        Tell(input.name + ": Records without a date count as seen now.");
      }
    }
    PrintPage(page);
  }
  if (!Flush()) return false;
  DrawProgress(input, portion);
  platform_.loop.Yield();
  return !stopped_;
}

void HarvestRun::PrintPage(const HarvestedPage& page) {
  ++pages_with_addresses_;
  for (const HarvestedPage::Address& address : page.addresses) {
    if (!address.first) continue;
    if (filter_.Keeps(page.AddressOf(address)))
      PrintAddress(page, address);
    else
      ++filtered_;
  }
}

void HarvestRun::PrintAddress(const HarvestedPage& page, const HarvestedPage::Address& address) {
  if (options_.format == AddressFormat::kLines && !seen_.Add(page.AddressOf(address))) return;
  ++addresses_;
  Sighting sighting;
  sighting.address = page.AddressOf(address);
  sighting.page = page.url;
  sighting.title = page.title;
  sighting.place = PlaceName(address.place);
  sighting.first_seen = *page.seen;
  std::string line = FormatSighting(sighting, options_.format);
  if (console_.OutputIsTerminal()) line = ForTerminal(std::string_view(line).substr(0, line.size() - 1)) + "\n";
  rows_ += line;
}

bool HarvestRun::Flush() {
  if (rows_.empty() || nobody_reads_) return !nobody_reads_;
  ClearProgress();
  nobody_reads_ = !console_.Write(rows_);
  rows_.clear();
  return !nobody_reads_;
}

bool HarvestRun::OnInputEnd(const InputReport& report) {
  const std::string& name = report.input.name;
  if (!report.failure.ok()) {
    Complain(SentenceOf(report.failure));
  } else if (report.kind == InputKind::kArc) {
    Complain(name + ": An ARC file, the format before WARC. It is not read.");
  } else if (report.kind == InputKind::kZstd) {
    Complain(name + ": It is packed by zstd, which is not read.");
  } else if ((report.kind == InputKind::kOther || report.kind == InputKind::kGzip) && report.input.named) {
    Complain(name + ": Neither an archive nor a page of text.");
  }
  if (report.damaged > 0) {
    const std::string records = report.damaged == 1 ? " damaged record" : " damaged records";
    Complain(name + ": " + std::to_string(report.damaged) + records + ". Everything readable has been read.");
  }
  return !stopped_;
}

void HarvestRun::TellEnd() {
  std::string line = std::to_string(addresses_) + " addresses on " + std::to_string(pages_with_addresses_) + " of " +
                     std::to_string(pages_) + " pages";
  if (protected_ > 0 && !options_.decode_protected) {
    line += ", " + std::to_string(protected_) + " protected addresses not listed";
  }
  if (filtered_ > 0) line += ", " + std::to_string(filtered_) + " dropped by the filters";
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

void HarvestRun::DrawProgress(const HarvestInput& input, const HarvestPortion&) {
  constexpr std::chrono::milliseconds kRedrawEvery{200};
  const auto now = std::chrono::steady_clock::now();
  if (!options_.progress || !console_.ErrorIsTerminal() || now - progress_last_ < kRedrawEvery) return;
  progress_last_ = now;
  progress_drawn_ = true;
  const std::string text =
      ForTerminal(std::to_string(addresses_) + " addresses, " + std::to_string(pages_) + " pages  " + input.name);
  console_.WriteError("\r" + std::string(FirstColumns(text, console_.ErrorColumns() - 1)) + "\x1B[K");
}

void HarvestRun::ClearProgress() {
  if (!progress_drawn_) return;
  progress_drawn_ = false;
  console_.WriteError("\r\x1B[K");
}

}  // namespace

int RunHarvest(Invocation& invocation, const HarvestOptions& options) {
  const Result<Platform> platform = invocation.system().Open(invocation.choice());
  if (!platform.ok()) return invocation.Fail(platform.status());
  const auto run = std::make_shared<HarvestRun>(invocation, platform.value(), options);
  invocation.system().OnStop([weak = std::weak_ptr(run)] {
    if (const auto stopping = weak.lock()) stopping->Stop();
  });
  return run->Run();
}

}  // namespace quenlar
