#include "crawl/crawler.h"

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <utility>

#include "base/number.h"
#include "base/product.h"

namespace quenlar {
namespace {

// Hosts that have answered and asked to wait, or whose robots.txt cannot be had for now, are waited for this long when
// nothing else is left to do, or for the pause that was asked for.
constexpr CrawlDuration kLongestWait = std::chrono::minutes(5);
// The budgets of time and the commit are looked at this often.
constexpr CrawlDuration kLongestSleep{1000};
// Kept beside those of the hosts under way, for hosts that are visited again soon.
constexpr std::size_t kSpareConnections = 64;
constexpr const char* kSearchKey = "s";

}  // namespace

std::string CrawlUserAgent(const std::string& contact) {
  const std::string agent = std::string(kCrawlAgent) + "/" + kProductVersion;
  return contact.empty() ? agent : agent + " (+" + contact + ")";
}

std::string_view NameOf(CrawlEnd end) {
  switch (end) {
    case CrawlEnd::kFinished:
      return "finished";
    case CrawlEnd::kPages:
      return "pages";
    case CrawlEnd::kAddresses:
      return "addresses";
    case CrawlEnd::kMinutes:
      return "minutes";
    case CrawlEnd::kStopped:
      return "stopped";
    case CrawlEnd::kOffLine:
      return "off line";
    case CrawlEnd::kNothingToDo:
      return "nothing to do";
    case CrawlEnd::kFailed:
      break;
  }
  return "failed";
}

Crawler::Crawler(const CrawlWorld& world, Collection& collection, const CrawlOptions& options)
    : world_(world),
      collection_(collection),
      options_(options),
      user_agent_(CrawlUserAgent(options.contact)),
      schedule_(std::max<std::size_t>(options.hosts, 1)),
      scope_(options.scope) {
  search_.pace = HostPace(options.delay);
  world_.client.SetListener(this);
  world_.client.LimitConnections(std::max<std::size_t>(options.hosts, 1) + kSpareConnections);
}

Crawler::~Crawler() {
  CancelRequests();
  world_.client.SetListener(nullptr);
}

void Crawler::CancelRequests() {
  for (const auto& [host, visit] : visits_) {
    if (visit->under_way != HostVisit::UnderWay::kNothing) world_.client.Cancel(std::to_string(host));
  }
  if (search_.under_way) world_.client.Cancel(kSearchKey);
  search_.under_way = false;
  visits_.clear();
}

Crawler::Outcome Crawler::Run(const std::vector<std::string>& starts) {
  started_ = world_.loop.Now();
  const std::int64_t now = world_.clock.UtcSeconds();
  record_.started = now;
  if (IsOffLine()) return Finish(CrawlEnd::kOffLine);
  if (Failed(collection_.BeginRun(now))) return Finish(CrawlEnd::kFailed);
  begun_ = true;
  if (Failed(TakeUpPages())) return Finish(CrawlEnd::kFailed);
  AddStarts(starts);
  if (options_.links) {
    for (const HandedLink& link : *options_.links) AddLink(link);
  }
  if (Failed(KeepWaits(now))) return Finish(CrawlEnd::kFailed);
  if (Failed(QueueHostsWaiting())) return Finish(CrawlEnd::kFailed);
  if (Failed(collection_.Commit())) return Finish(CrawlEnd::kFailed);
  if (search_.keywords.empty() && !schedule_.HasQueued() && schedule_.Parked().empty()) {
    return Finish(given_.empty() && !start_problems_.empty() ? CrawlEnd::kFailed : CrawlEnd::kNothingToDo);
  }
  for (;;) {
    GoOn();
    if (const auto end = EndReached()) return Finish(*end);
    CrawlDuration sleep = kLongestSleep;
    if (const auto next = schedule_.NextTime()) {
      const auto left = std::chrono::ceil<CrawlDuration>(*next - world_.loop.Now());
      sleep = std::clamp(left, CrawlDuration{0}, kLongestSleep);
    }
    world_.loop.Wait(sleep);
  }
}

// What has arrived is kept before anything more is asked for: no page that was finished is fetched again.
void Crawler::GoOn() {
  if (!begun_ || BudgetReached()) return;
  if (Failed(collection_.CommitSoon())) return;
  GiveRows();
  Step();
}

// Pages of earlier runs that are to be visited anew.
Status Crawler::TakeUpPages() {
  const std::string reading = std::string(options_.decode_protected ? "protected " : "") +
                              (options_.obey_robots ? "obey " : "ignore ") + options_.filters;
  const Result<Pass> pass = collection_.BeginPass(options_.again, reading);
  if (!pass.ok()) return pass.status();
  pass_ = pass.value();
  if (pass_.goes_on) {
    world_.view.OnNotice(
        "Not all pages have been visited since the last time; this goes on. When it is finished, everything can be "
        "visited anew (on the command line by --again)");
  }
  return QueueRefusedPages();
}

// Links that were handed over leave what waits on other sites to a later run.
Status Crawler::QueueHostsWaiting() {
  return collection_.HostsWaiting([this](HostId host, int depth) {
    if (!options_.links) return QueueHost(host, depth);
    const Result<HostRow> row = collection_.Host(host);
    if (Failed(row)) return;
    const auto url = ParseUrl(row.value().origin, nullptr, world_.idna);
    if (url && scope_.Contains(*url)) QueueHost(host, depth);
  });
}

// Hosts that asked an earlier run to wait. They have answered, so this run may wait for them too.
Status Crawler::KeepWaits(std::int64_t now) {
  return collection_.Waits(now, [&](HostId host, std::int64_t until) {
    const auto left = std::min<CrawlDuration>(std::chrono::seconds(until - now), kLongestPark);
    HostMemory& memory = MemoryOf(host);
    memory.pace.Park(world_.loop.Now(), left);
    memory.answered = true;
    memory.reason = "it asked to be left alone";
  });
}

// What an option refused in an earlier run is judged anew where this run has another one.
Status Crawler::QueueRefusedPages() {
  const Status robots = collection_.QueueRefused(kRefusedRobots, options_.obey_robots ? "obey" : "ignore");
  if (!robots.ok()) return robots;
  const Status depth = collection_.QueueRefused(kRefusedDepth, std::to_string(options_.depth));
  if (!depth.ok()) return depth;
  return collection_.QueueRefused(kRefusedScope, std::to_string(static_cast<int>(options_.scope)));
}

// Starts every request whose time has come.
void Crawler::Step() {
  const CrawlTime now = world_.loop.Now();
  AskSearchService();
  while (failure_.ok()) {
    const auto host = schedule_.Activate(now);
    if (!host) break;
    Enter(*host);
  }
  while (failure_.ok()) {
    const auto host = schedule_.NextToAsk(now);
    if (!host) break;
    if (const auto found = visits_.find(*host); found != visits_.end()) Ask(*found->second);
  }
}

// What ends a run whatever is left to do.
std::optional<CrawlEnd> Crawler::BudgetReached() const {
  const CrawlTime now = world_.loop.Now();
  if (!failure_.ok()) return CrawlEnd::kFailed;
  if (stopped_) return CrawlEnd::kStopped;
  if (offline_) return CrawlEnd::kOffLine;
  if (options_.minutes && now - started_ >= std::chrono::duration<double, std::ratio<60>>(*options_.minutes)) {
    return CrawlEnd::kMinutes;
  }
  if (options_.addresses && static_cast<std::uint64_t>(collection_.addresses()) >= *options_.addresses) {
    return CrawlEnd::kAddresses;
  }
  if (options_.pages && figures_.pages >= *options_.pages) {
    return collection_.waiting() == 0 && search_.keywords.empty() ? CrawlEnd::kFinished : CrawlEnd::kPages;
  }
  return std::nullopt;
}

std::optional<CrawlEnd> Crawler::EndReached() {
  if (const auto end = BudgetReached()) return end;
  if (requests_ > 0 || schedule_.active() > 0 || schedule_.HasQueued()) {
    waiting_for_.clear();
    return std::nullopt;
  }
  if (WaitsForHosts(world_.loop.Now())) return std::nullopt;
  LeaveSearches();
  if (!failure_.ok() || NoStartAnswered()) return CrawlEnd::kFailed;
  return sent_ == 0 ? CrawlEnd::kNothingToDo : CrawlEnd::kFinished;
}

// Only parked hosts are left, and a search service that is not to be asked yet. Those that have never answered are not
// waited for. However often one of them is asked in vain meanwhile, the wait is one.
bool Crawler::WaitsForHosts(CrawlTime now) {
  if (!alone_since_) alone_since_ = now;
  std::string names;
  std::optional<CrawlTime> first;
  int count = 0;
  constexpr int kMostNamed = 3;
  const auto add = [&](const std::string& name, CrawlTime ready) {
    first = first ? std::min(*first, ready) : ready;
    if (++count <= kMostNamed) names += (names.empty() ? "" : ", ") + name;
  };
  for (const auto& [host, ready] : schedule_.Parked()) {
    if (!MemoryOf(host).answered) continue;
    const Result<HostRow> row = count < kMostNamed ? collection_.Host(host) : HostRow{};
    if (!Failed(row)) add(row.value().origin, ready);
  }
  if (!search_.keywords.empty()) add("the search service", search_.pace.ready());
  const CrawlTime last = *alone_since_ + std::max(kLongestWait, options_.delay);
  if (!first || *first > last) return false;
  const auto seconds = std::chrono::ceil<std::chrono::seconds>(*first - now).count();
  waiting_for_ = "waiting " + std::to_string(std::max<long long>(seconds, 0)) + " s for " + names +
                 (count > kMostNamed ? " and " + std::to_string(count - kMostNamed) + " more" : "");
  return true;
}

// Whether every start of this run lies on a host that gave no answer at all.
bool Crawler::NoStartAnswered() const {
  if (figures_.pages > 0) return false;
  if (given_.empty()) return !start_problems_.empty();
  return std::all_of(given_.begin(), given_.end(), [this](const auto& start) {
    const auto memory = memories_.find(start.second.host);
    return memory != memories_.end() && !memory->second.answered && memory->second.refusals > 0;
  });
}

WebRequest Crawler::RequestFor(const std::string& url, bool may_be_private) const {
  WebRequest request;
  request.url = url;
  request.user_agent = user_agent_;
  request.private_addresses = may_be_private;
  request.keep_wire = options_.keep_wire;
  return request;
}

// The key of a host's request is the host's number: it never has two.
bool Crawler::OnHead(const std::string& key, const WebHead& head) {
  if (key == kSearchKey) return true;
  const auto found = visits_.find(std::strtoll(key.c_str(), nullptr, 10));
  if (found == visits_.end() || head.status < 200 || head.status > 299) return false;
  return found->second->under_way == HostVisit::UnderWay::kRobots || IsPageType(head);
}

void Crawler::OnEnd(const std::string& key, WebAnswer answer) {
  figures_.bytes += answer.bytes_received;
  if (key == kSearchKey) return OnSearchAnswer(std::move(answer));
  const auto found = visits_.find(std::strtoll(key.c_str(), nullptr, 10));
  if (found == visits_.end() || !failure_.ok()) return;
  HostVisit& visit = *found->second;
  --requests_;
  const auto was = std::exchange(visit.under_way, HostVisit::UnderWay::kNothing);
  visit.asked_of->asked = false;
  if (answer.head.status != 0) NoteAnswer(visit);
  if (was == HostVisit::UnderWay::kRobots) return OnRobotsAnswer(visit, answer);
  --page_requests_;
  // A page that was not read leaves its part of the budget to hosts that are held back by it.
  for (const HostId host : std::exchange(held_, {})) schedule_.AskAt(host, world_.loop.Now());
  OnPageAnswer(visit, answer);
}

bool Crawler::IsOffLine() { return !options_.assume_online && !world_.interfaces.IsOnline(); }

bool Crawler::Failed(const Status& status) {
  if (!status.ok() && failure_.ok()) failure_ = status;
  return !status.ok();
}

std::vector<HostUnderWay> Crawler::Slowest(std::size_t most) const {
  const CrawlTime now = world_.loop.Now();
  std::vector<HostUnderWay> hosts;
  for (const auto& [host, visit] : visits_) {
    if (visit->under_way == HostVisit::UnderWay::kNothing) continue;
    hosts.push_back({visit->row.origin, std::chrono::duration<double>(now - visit->asked_at).count()});
  }
  const auto end = hosts.begin() + static_cast<std::ptrdiff_t>(std::min(most, hosts.size()));
  std::partial_sort(hosts.begin(), end, hosts.end(),
                    [](const HostUnderWay& a, const HostUnderWay& b) { return a.seconds > b.seconds; });
  hosts.erase(end, hosts.end());
  return hosts;
}

std::optional<HostUnderWay> Crawler::NextInPause() const {
  const HostVisit* next = nullptr;
  for (const auto& [host, visit] : visits_) {
    if (visit->under_way != HostVisit::UnderWay::kNothing) continue;
    if (next == nullptr || visit->memory.pace.ready() < next->memory.pace.ready()) next = visit.get();
  }
  if (next == nullptr) return std::nullopt;
  const CrawlDuration left = std::chrono::ceil<CrawlDuration>(next->memory.pace.ready() - world_.loop.Now());
  return HostUnderWay{next->row.origin, std::chrono::duration<double>(std::max(left, CrawlDuration{0})).count()};
}

Crawler::Outcome Crawler::Finish(CrawlEnd end) {
  Outcome outcome;
  outcome.end = end;
  CancelRequests();
  outcome.messages = EndMessages(end);
  record_.ended = world_.clock.UtcSeconds();
  record_.reason = NameOf(end);
  record_.pages = figures_.pages;
  record_.failed = figures_.failed;
  record_.refused = figures_.refused;
  record_.fresh = figures_.fresh;
  record_.protected_count = figures_.protected_count;
  record_.filtered = figures_.filtered;
  record_.bytes = figures_.bytes;
  record_.seconds = std::chrono::duration<double>(world_.loop.Now() - started_).count();
  if (failure_.ok() && begun_) {
    const bool finished = end == CrawlEnd::kFinished || end == CrawlEnd::kNothingToDo;
    if (finished) Failed(collection_.EndPass());
    if (!Failed(collection_.SaveRun(record_)) && !Failed(collection_.Commit())) GiveRows();
  }
  // A failed collection has taken back what was not committed, and so do the figures.
  if (!failure_.ok()) {
    figures_ = committed_;
    collection_.Forget();
  }
  outcome.no_search_service = no_search_service_;
  outcome.status = failure_;
  if (!failure_.ok()) outcome.end = CrawlEnd::kFailed;
  return outcome;
}

// Names the starts that gave no answer, or the hosts whose pages are left.
std::vector<std::string> Crawler::EndMessages(CrawlEnd end) {
  std::vector<std::string> messages = start_problems_;
  if (!failure_.ok()) return messages;
  if (end == CrawlEnd::kFailed) {
    for (const auto& [id, start] : given_) messages.push_back(start.text + ": " + MemoryOf(start.host).reason);
    return messages;
  }
  constexpr std::size_t kMostNamed = 10;
  std::size_t hosts = 0;
  for (const auto& [host, memory] : memories_) {
    if (memory.reason.empty()) continue;
    const Result<std::int64_t> left = collection_.WaitingOn(host);
    if (!left.ok() || left.value() == 0 || ++hosts > kMostNamed) continue;
    const Result<HostRow> row = collection_.Host(host);
    const auto pages = static_cast<std::uint64_t>(left.value());
    const std::string are = pages == 1 ? " is" : " are";
    if (row.ok())
      messages.push_back(Counted(pages, "page") + are + " left on " + row.value().origin + ": " + memory.reason);
  }
  if (hosts > kMostNamed) messages.push_back("Pages are left on " + Counted(hosts - kMostNamed, "more host"));
  return messages;
}

}  // namespace quenlar
