#include "cli/collect_run.h"

#include <chrono>
#include <memory>
#include <utility>

#include "archive/archiving_client.h"
#include "archive/warc_writer.h"
#include "base/number.h"
#include "cli/exit_status.h"
#include "cli/json_text.h"
#include "cli/live_view.h"
#include "cli/run_filter.h"
#include "cli/sighting_format.h"
#include "cli/terminal_text.h"
#include "collection/collection.h"
#include "collection/collection_reader.h"
#include "crawl/crawler.h"
#include "engine/collections.h"
#include "engine/erase_suppressed.h"
#include "engine/home.h"
#include "platform/event_loop.h"
#include "settings/filter_words.h"
#include "settings/suppression_file.h"

namespace quenlar {
namespace {

constexpr std::chrono::milliseconds kRedrawEvery{200};
constexpr std::size_t kSlowestShown = 3;

int StatusOf(CrawlEnd end) {
  switch (end) {
    case CrawlEnd::kFailed:
      return kExitFailed;
    case CrawlEnd::kOffLine:
      return kExitOffLine;
    case CrawlEnd::kStopped:
      return kExitStopped;
    case CrawlEnd::kFinished:
    case CrawlEnd::kPages:
    case CrawlEnd::kAddresses:
    case CrawlEnd::kMinutes:
    case CrawlEnd::kNothingToDo:
      break;
  }
  return kExitDone;
}

std::string EndSentence(CrawlEnd end, std::int64_t left) {
  switch (end) {
    case CrawlEnd::kFinished:
      return left == 0 ? "Everything in scope has been visited."
                       : "Everything in scope that can be had for now has been visited.";
    case CrawlEnd::kPages:
      return "The budget of pages is used up. The same command goes on.";
    case CrawlEnd::kAddresses:
      return "The collection has as many addresses as asked for.";
    case CrawlEnd::kMinutes:
      return "The time is up. The same command goes on.";
    case CrawlEnd::kStopped:
      return "Stopped. The same command goes on.";
    case CrawlEnd::kOffLine:
      return "You are not on the internet.";
    case CrawlEnd::kNothingToDo:
      return left == 0 ? "This collection is finished. With --again its pages are visited anew."
                       : "There is nothing to do, although pages are left.";
    case CrawlEnd::kFailed:
      break;
  }
  return "None of the starts could be visited.";
}

class CollectRun final : public CrawlView {
 public:
  CollectRun(Console& console, Workplace& place, WebClient& client, const CollectOptions& options)
      : console_(console), place_(place), client_(client), options_(options), filter_(settings_), live_(console) {}

  CollectResult Run();
  void Stop() {
    stopped_ = true;
    if (crawler_) crawler_->Stop();
  }

  void OnNewAddress(const NewAddress& found) override;
  void OnNotice(const std::string& text) override { Tell(text + "."); }

 private:
  [[nodiscard]] Status Prepare();
  [[nodiscard]] Status OpenArchive();
  [[nodiscard]] Status LoadSuppression();
  void RunCrawler();
  void TellEnd(const Crawler::Outcome& outcome);
  void Tell(const std::string& text);
  void Redraw();

  Console& console_;
  Workplace& place_;
  WebClient& client_;
  const CollectOptions& options_;
  Settings settings_;
  FilterWords filter_;
  SuppressionList suppression_;
  LiveView live_;
  CollectResult result_;
  std::unique_ptr<WarcWriter> writer_;          // with --warc
  std::unique_ptr<ArchivingClient> archiving_;  // the same
  std::unique_ptr<Collection> collection_;
  std::unique_ptr<Crawler> crawler_;
  std::chrono::steady_clock::time_point started_{};
  bool stopped_ = false, nobody_reads_ = false;
};

CollectResult CollectRun::Run() {
  EventLoop& loop = place_.platform.loop;
  started_ = loop.Now();
  result_.collection = options_.name;
  const Status prepared = Prepare();
  if (prepared.ok()) {
    RunCrawler();
  } else {
    result_.status = kExitFailed;
    result_.reason = NameOf(CrawlEnd::kFailed);
    Tell(SentenceOf(prepared));
  }
  result_.seconds = std::chrono::duration<double>(loop.Now() - started_).count();
  return result_;
}

Status CollectRun::Prepare() {
  Files& files = place_.platform.files;
  if (Status made = MakeFolders(files, place_.installation.Data(), place_.installation.separator); !made.ok())
    return made;
  const auto tell = [this](const std::string& message) { Tell(message); };
  const Status loaded = LoadRunFilter(place_.platform, place_.installation, options_.remove_words,
                                      options_.extract_words, settings_, filter_, tell);
  if (!loaded.ok()) return loaded;
  if (Status read = LoadSuppression(); !read.ok()) return read;
  const std::string path = CollectionPath(place_.installation, options_.name);
  std::vector<std::string> notices;
  if (Status erased = EraseSuppressed(files, path, suppression_, notices); !erased.ok()) return erased;
  for (const std::string& notice : notices) Tell(notice + ".");
  if (Status opened = OpenArchive(); !opened.ok()) return opened;
  auto opened = Collection::Open(files, path);
  if (!opened.ok()) return opened.status();
  if (!opened.value().kept_aside.empty()) {
    Tell("The collection was damaged. It lies in " + opened.value().kept_aside + " now, and a new one begins.");
  }
  collection_ = std::move(opened.value().collection);
  return Status::Ok();
}

Status CollectRun::OpenArchive() {
  if (options_.warc.empty()) return Status::Ok();
  const Platform& platform = place_.platform;
  const CrawlOptions& crawl = options_.crawl;
  const WarcOrigin origin{CrawlUserAgent(""), CrawlUserAgent(crawl.contact), crawl.obey_robots ? "obey" : "ignore"};
  auto opened = WarcWriter::Open(platform.files, platform.clock, options_.warc, place_.installation.separator, origin);
  if (!opened.ok()) return opened.status();
  writer_ = opened.take();
  archiving_ = std::make_unique<ArchivingClient>(client_, *writer_, [this] { Stop(); });
  return Status::Ok();
}

Status CollectRun::LoadSuppression() {
  const Platform& platform = place_.platform;
  std::vector<std::string> messages;
  Result<SuppressionList> list = LoadSuppressionList(platform.files, platform.idna, place_.installation, messages);
  if (!list.ok()) return list.status();
  for (const std::string& message : messages) Tell(message);
  suppression_ = list.take();
  return Status::Ok();
}

void CollectRun::RunCrawler() {
  const Platform& platform = place_.platform;
  if (options_.crawl.contact.empty()) {
    Tell("Sites cannot tell who visits them. Name a web or mail address of yours with --contact TEXT; it is kept.");
  }
  WebClient& client = archiving_ ? *archiving_ : client_;
  const CrawlWorld world{platform.loop,         client,  platform.interfaces, platform.clock, platform.idna,
                         platform.text_decoder, filter_, suppression_,        *this};
  CrawlOptions crawl = options_.crawl;
  crawl.filters = filter_.Text() + suppression_.Digest();
  crawler_ = std::make_unique<Crawler>(world, *collection_, crawl);
  if (stopped_) crawler_->Stop();
  const auto redraw = platform.loop.MakeTimer(kRedrawEvery, [this] { Redraw(); });
  redraw->SetEnabled(live_.on());
  Crawler::Outcome outcome = crawler_->Run(options_.starts);
  redraw->SetEnabled(false);
  if (archiving_) {
    Status archived = archiving_->status().ok() ? writer_->Flush() : archiving_->status();
    if (!archived.ok()) {
      outcome.end = CrawlEnd::kFailed;
      outcome.status = std::move(archived);
    }
  }
  // What could be visited was, but a keyword without a service is not what was asked for.
  result_.status = StatusOf(outcome.end);
  if (outcome.no_search_service && result_.status == kExitDone) result_.status = kExitFailed;
  result_.reason = NameOf(outcome.end);
  result_.figures = crawler_->figures();
  result_.addresses = collection_->addresses();
  result_.left = collection_->waiting();
  TellEnd(outcome);
}

void CollectRun::TellEnd(const Crawler::Outcome& outcome) {
  live_.Clear();
  if (nobody_reads_) return;
  for (const std::string& sentence : outcome.messages) Tell(sentence + (sentence.ends_with('?') ? "" : "."));
  Tell(outcome.status.ok() ? EndSentence(outcome.end, result_.left) : SentenceOf(outcome.status));
  const CrawlFigures& figures = result_.figures;
  std::string line = Counted(figures.fresh, "new address", "es") + " on " + Counted(figures.pages, "page") + "; " +
                     std::to_string(result_.addresses) + " in all, " +
                     Counted(static_cast<std::uint64_t>(result_.left), "page") + " left to visit";
  const auto add = [&line](std::uint64_t count, const std::string& what) {
    if (count > 0) line += ", " + what;
  };
  add(figures.failed, std::to_string(figures.failed) + " failed");
  add(figures.refused, std::to_string(figures.refused) + " refused");
  const bool listed = options_.crawl.decode_protected;
  add(listed ? 0 : figures.protected_count,
      Counted(figures.protected_count, "protected address", "es") + " not listed");
  add(figures.filtered, Counted(figures.filtered, "address", "es") + " dropped by the filters");
  add(figures.suppressed, Counted(figures.suppressed, "address", "es") + " suppressed");
  Tell(line + ".");
}

void CollectRun::OnNewAddress(const NewAddress& found) {
  if (nobody_reads_) return;
  live_.Clear();
  Sighting sighting;
  sighting.address = found.address;
  sighting.page = found.page;
  sighting.title = found.title;
  sighting.place = PlaceName(found.place);
  sighting.first_seen = found.seen;
  std::string line = FormatSighting(sighting, options_.format);
  if (console_.OutputIsTerminal()) line = ForTerminal(std::string_view(line).substr(0, line.size() - 1)) + "\n";
  if (console_.Write(line)) return;
  nobody_reads_ = true;
  Stop();
}

void CollectRun::Tell(const std::string& text) {
  live_.Clear();
  Invocation::SayOn(console_, text);
}

void CollectRun::Redraw() {
  if (!live_.on() || !crawler_) return;
  const auto now = place_.platform.loop.Now();
  LiveView::Figures figures;
  figures.crawl = crawler_->figures();
  figures.addresses = collection_->addresses();
  figures.left = collection_->waiting();
  figures.requests = crawler_->requests();
  figures.hosts = crawler_->hosts();
  figures.slowest = crawler_->Slowest(kSlowestShown);
  figures.waiting_for = crawler_->waiting_for();
  figures.pages = options_.crawl.pages;
  if (options_.crawl.minutes) {
    figures.minutes_left =
        *options_.crawl.minutes - std::chrono::duration<double, std::ratio<60>>(now - started_).count();
  }
  live_.Draw(figures, now);
}

}  // namespace

CollectResult RunCollect(Console& console, Workplace& place, WebClient& client, const CollectOptions& options,
                         const std::function<void(std::function<void()> stop)>& watch_stop) {
  const auto run = std::make_shared<CollectRun>(console, place, client, options);
  watch_stop([running = std::weak_ptr<CollectRun>(run)] {
    if (const auto still = running.lock()) still->Stop();
  });
  return run->Run();
}

std::string SummaryText(const CollectResult& result) {
  return JsonLine({{"reason", result.reason},
                   {"addresses", result.addresses},
                   {"new", result.figures.fresh},
                   {"pages", result.figures.pages},
                   {"failed", result.figures.failed},
                   {"refused", result.figures.refused},
                   {"left", result.left},
                   {"protected", result.figures.protected_count},
                   {"suppressed", result.figures.suppressed},
                   {"bytes", result.figures.bytes},
                   {"seconds", result.seconds},
                   {"collection", result.collection}});
}

}  // namespace quenlar
