#include "engine/collection_job.h"

#include <algorithm>
#include <chrono>
#include <new>
#include <utility>

#include "base/product.h"
#include "collection/overview.h"
#include "engine/collections.h"
#include "engine/erase_suppressed.h"
#include "platform/files.h"
#include "platform/message_boxes.h"
#include "project/project_name.h"
#include "project/report_file.h"
#include "run/end_reasons.h"

namespace quenlar {
namespace {

constexpr std::chrono::milliseconds kShowEvery{200};
constexpr std::uint32_t kRowsBetweenPumps = 256;

constexpr const char* kFinishedQuestion = "This collection is finished. Visit its pages again ?";
constexpr const char* kLeftQuestion =
    "Pages are left, but their hosts have had as many as the web settings allow. Visit the pages that were visited "
    "again ?";

// "<path> cannot be <done>: <reason> !"
Status Sentence(const Status& status, const std::string& path, const char* done) {
  if (status.ok() || status.kind() == StatusKind::kLimit) return status;
  std::string reason = status.message();
  if (reason.starts_with(path + ": ")) reason.erase(0, path.size() + 2);
  return {status.kind(), path + " cannot be " + done + ": " + reason + " !"};
}

}  // namespace

CrawlOptions CrawlOptionsOf(const WebSettings& settings, const std::string& language) {
  constexpr CrawlScope kScopes[] = {CrawlScope::kHost, CrawlScope::kSite, CrawlScope::kAnywhere};
  CrawlOptions options;
  options.scope = kScopes[settings.scope];
  options.depth = settings.depth;
  options.pages_per_host = static_cast<std::uint64_t>(settings.pages_per_host);
  options.hosts = static_cast<std::size_t>(settings.hosts);
  options.delay = std::chrono::milliseconds(settings.pause);
  options.obey_robots = settings.obey_robots != 0;
  options.contact = settings.contact;
  options.search_service = settings.search_service;
  options.language = language;
  options.decode_protected = settings.list_protected != 0;
  return options;
}

CollectionJob::CollectionJob(Engine& engine, WebClient& client, const WebSettings& settings, FrontEnd front_end,
                             Pump::Pace pace)
    : engine_(engine),
      client_(client),
      settings_(settings),
      front_end_(front_end),
      pump_(engine.platform.loop, pace),
      texts_(engine.platform.registry, engine.platform.files, engine.settings, engine.installation,
             engine.project_list) {}

CollectionJob::~CollectionJob() = default;

std::string CollectionJob::Path() const { return CollectionPath(engine_.installation, named_.name); }

// --- Opening ---

void CollectionJob::Open(std::string_view text) {
  named_ = CollectionOfText(text, engine_.settings, engine_.installation, engine_.platform.files);
  try {
    OpenNamed(Pumping::kYes);
  } catch (const std::bad_alloc&) {
    named_ = {};
    loading_ = false;
    throw;
  }
}

void CollectionJob::OpenNamed(Pumping pumping) {
  const std::uint64_t opening = ++openings_;
  front_end_.project_view.ProjectClosed();
  front_end_.view.ClearRows();
  found_.Clear();
  figures_ = {};
  suppression_changes_ = engine_.suppression_changes;
  const bool has_file = HasFiles() && engine_.platform.files.FileExists(Path());
  loading_ = true;
  const Status loaded = has_file ? LoadAddresses(opening, pumping) : Status::Ok();
  if (opening != openings_) return;
  loading_ = false;
  front_end_.project_view.ProjectFiles(has_file, has_file);
  front_end_.view.ShowStage("Load data finished ");
  front_end_.view.ShowAddressCount(found_.Count());
  front_end_.view.ShowScanCount(0);
  front_end_.project_view.ProjectReady();
  if (!loaded.ok()) front_end_.view.ShowStage(SentenceOf(loaded));
}

// Another opening may take over inside a pump; the reader belongs to this one.
Status CollectionJob::LoadAddresses(std::uint64_t opening, Pumping pumping) {
  const auto reader = OpenReader();
  if (!reader.ok()) return reader.status();
  const auto show = [this] {
    if (found_.Count() > 0) front_end_.view.AddRow(found_.Count() - 1, false);
  };
  const Status listed = reader.value()->Listed([&](const ListedAddress& row) {
    found_.Add({row.page, row.address, row.title});
    if (found_.Count() % kRowsBetweenPumps != 0) return true;
    show();
    if (pumping == Pumping::kYes) pump_();
    return opening == openings_;
  });
  if (opening == openings_) show();
  return listed;
}

void CollectionJob::FinishLoading() {
  if (loading_) OpenNamed(Pumping::kNo);
}

// --- Files ---

std::string CollectionJob::report() const {
  return HasFiles() ? engine_.installation.Report(SafeFileName(named_.name) + ".web.rpt") : std::string();
}

std::string CollectionJob::WebPagePath() const {
  return engine_.installation.Report(SafeFileName(named_.name) + ".web.html");
}

Result<std::unique_ptr<CollectionReader>> CollectionJob::Reader() {
  SaveAtOnce();
  if (!HasFiles() || !engine_.platform.files.FileExists(Path())) {
    return Status(StatusKind::kNotFound, "Nothing has been collected yet");
  }
  return OpenReader();
}

// What is never listed may have been written into the file before.
Result<std::unique_ptr<CollectionReader>> CollectionJob::OpenReader() {
  auto reader = CollectionReader::Open(Path());
  if (reader.ok()) {
    reader.value()->LeaveOut([this](std::string_view address) { return engine_.suppression.Keeps(address); });
  }
  return reader;
}

Result<std::string> CollectionJob::WriteWebPage() {
  if (std::exchange(writing_page_, true)) return std::string();
  const std::uint64_t opening = openings_;
  const auto write = [&]() -> Result<std::string> {
    const auto reader = Reader();
    if (!reader.ok()) return reader.status();
    const std::string path = WebPagePath();
    auto file = engine_.platform.files.Replace(path);
    if (!file.ok()) return Sentence(file.status(), path, "saved");
    Status saved;
    const Status written = WriteOverview(*reader.value(), named_.name, {}, [&](std::string_view piece) {
      saved = file.value()->Write(piece);
      pump_();
      return saved.ok() && opening == openings_;
    });
    if (!written.ok()) return written;
    if (opening != openings_) return std::string();
    if (saved.ok()) saved = file.value()->Commit();
    if (!saved.ok()) return Sentence(saved, path, "saved");
    return path;
  };
  Result<std::string> path = write();
  writing_page_ = false;
  return path;
}

// In one go: the table may be cleared in a pump.
Status CollectionJob::WriteReport() {
  const std::string path = report();
  const Platform& platform = engine_.platform;
  auto writer =
      StartReport(platform.files, platform.code_page, path, found_, engine_.settings.ExportMode != 0, UINT32_MAX);
  if (!writer.ok()) return Sentence(writer.status(), path, "saved");
  writer.value()->FinishNow();
  return Sentence(writer.value()->Commit(), path, "saved");
}

Status CollectionJob::DeleteFiles() {
  Status first;
  if (!HasFiles()) return first;
  Files& files = engine_.platform.files;
  for (const std::string& path : {Path(), Path() + "-wal", Path() + "-shm", report(), WebPagePath()}) {
    if (!files.FileExists(path)) continue;
    const Status deleted = Sentence(files.Delete(path), path, "deleted");
    if (first.ok()) first = deleted;
  }
  return first;
}

// --- The run ---

// The message box at the end pumps, and so may the question.
void CollectionJob::Run() {
  running_ = true;
  const WebSettings settings = settings_;
  CollectionEnd end = RunOnce(settings, false);
  if (end.end == CrawlEnd::kNothingToDo && end.status.ok() &&
      engine_.platform.boxes.Show(end.left == 0 ? kFinishedQuestion : kLeftQuestion, kProductCaption,
                                  BoxIcon::kExclamation, BoxButtons::kYesNo) == BoxAnswer::kYes) {
    end = RunOnce(settings, true);
    figures_ = end.figures;
    front_end_.view.ShowScanCount(scanned());
  }
  front_end_.host.RunEnded(EndText(end, settings));
  const bool has_report = engine_.platform.files.FileExists(report());
  if (found_.Count() > 0 || has_report) front_end_.host.ReportSaved(WriteReport());
  front_end_.host.Idle(true);
  running_ = stop_requested_ = false;
  front_end_.host.RunOver();
}

// What is committed stays when there is not enough memory, as after any other failure.
CollectionEnd CollectionJob::RunOnce(const WebSettings& settings, bool again) {
  CollectionEnd end;
  notices_.clear();
  figures_ = {};
  try {
    VisitPages(settings, again, end);
    if (again) OpenNamed(Pumping::kNo);  // an address may be gone, or stand on another page now
  } catch (const std::bad_alloc&) {
    loading_ = false;
    crawler_.reset();
    collection_.reset();
    end.status = Status(StatusKind::kFull, kEndNoMemory);
  }
  if (settings.contact.empty()) {
    notices_.emplace_back("Sites cannot tell who visits them: the web settings take a contact of yours");
  }
  end.notices.insert(end.notices.end(), notices_.begin(), notices_.end());
  return end;
}

void CollectionJob::VisitPages(const WebSettings& settings, bool again, CollectionEnd& end) {
  end.status = OpenForRun();
  end.opened = end.status.ok();
  if (end.opened) {
    CrawlOptions options = CrawlOptionsOf(settings, named_.language);
    options.again = again;
    options.filters = engine_.filter.Text() + engine_.suppression.Digest();
    Crawl(options, end);
    collection_.reset();
    const auto reader = CollectionReader::Open(Path());
    if (auto refusals = reader.ok() ? reader.value()->PagesRefused() : reader.status(); refusals.ok()) {
      end.refusals = refusals.take();
    }
  }
}

Status CollectionJob::OpenForRun() {
  const Status erased = EraseSuppressed(engine_.platform.files, Path(), engine_.suppression, notices_);
  if (!erased.ok()) return erased;
  auto opened = Collection::Open(engine_.platform.files, Path());
  if (!opened.ok()) return opened.status();
  if (const std::string& aside = opened.value().kept_aside; !aside.empty()) {
    notices_.push_back("The collection was damaged. It lies in " + aside + " now, and a new one has begun");
    front_end_.view.ClearRows();
    found_.Clear();
    front_end_.view.ShowAddressCount(0);
  }
  collection_ = std::move(opened.value().collection);
  return Status::Ok();
}

// A text that is the collection's name brings no start into a collection that was made with others.
std::vector<std::string> CollectionJob::StartsOfRun() {
  if (!named_.may_be_name) return named_.starts;
  const auto known = collection_->Starts();
  if (!known.ok() || known.value().empty()) return named_.starts;
  const bool is_start =
      std::ranges::any_of(known.value(), [this](const StartRow& start) { return start.text == named_.starts.front(); });
  return is_start ? named_.starts : std::vector<std::string>();
}

void CollectionJob::Crawl(const CrawlOptions& options, CollectionEnd& end) {
  const Platform& platform = engine_.platform;
  const CrawlWorld world{platform.loop,         client_,        platform.interfaces, platform.clock, platform.idna,
                         platform.text_decoder, engine_.filter, engine_.suppression, *this};
  crawler_ = std::make_unique<Crawler>(world, *collection_, options);
  if (stop_requested_) crawler_->Stop();
  const auto show = platform.loop.MakeTimer(kShowEvery, [this] { ShowMoment(); });
  show->SetEnabled(true);
  const Crawler::Outcome outcome = crawler_->Run(StartsOfRun());
  show->SetEnabled(false);
  figures_ = crawler_->figures();
  front_end_.view.ShowScanCount(scanned());
  front_end_.view.ShowStage("The run has ended");
  end.end = outcome.end;
  end.status = outcome.status;
  end.figures = figures_;
  end.addresses = collection_->addresses();
  end.left = collection_->waiting();
  end.notices = outcome.messages;
  crawler_.reset();
}

void CollectionJob::Stop() {
  stop_requested_ = true;
  if (crawler_) crawler_->Stop();
}

// The crawl waits between two pages when this is called, so all that is there can be committed.
void CollectionJob::SaveAtOnce() {
  if (collection_) collection_->Commit().Ignore("the next run visits again what is not saved");
}

void CollectionJob::OnNewAddress(const NewAddress& found) {
  found_.Add({found.page, found.address, found.title});
  front_end_.view.AddRow(found_.Count() - 1, false);
  front_end_.view.ShowAddressCount(found_.Count());
}

// The system's own loops, as behind a message box or an open menu, keep the crawl from coming back to its own.
void CollectionJob::ShowMoment() {
  if (!crawler_) return;
  crawler_->GoOn();
  CollectionMoment moment;
  moment.waiting_for = crawler_->waiting_for();
  if (auto slowest = crawler_->Slowest(1); !slowest.empty()) moment.asked = slowest.front();
  moment.pausing = crawler_->NextInPause();
  moment.hosts = crawler_->hosts();
  moment.left = collection_->waiting();
  front_end_.view.ShowStage(StageText(moment));
  figures_ = crawler_->figures();
  front_end_.view.ShowScanCount(scanned());
}

}  // namespace quenlar
