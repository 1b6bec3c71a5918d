// The part of Crawler that visits hosts: their robots.txt, their pace, their failures.
#include <algorithm>
#include <chrono>
#include <iterator>
#include <utility>

#include "base/number.h"
#include "crawl/crawler.h"

namespace quenlar {
namespace {

constexpr std::int64_t kRobotsAge = 24 * 60 * 60;  // seconds for which a robots.txt is kept
constexpr int kMostRobotsHops = 5;
// After a robots.txt that cannot be had, and after a host that gives no answer at all, it is asked again after these
// waits; then the host is given up for this run.
constexpr CrawlDuration kWaits[] = {std::chrono::minutes(1), std::chrono::minutes(5), std::chrono::minutes(25)};
// Pages that are refused one after the other before others have their turn.
constexpr int kMostRefusedInARow = 100;

CrawlDuration Seconds(double seconds) { return CrawlDuration(static_cast<std::int64_t>(seconds * 1000)); }

bool IsRedirect(int status) {
  return status == 301 || status == 302 || status == 303 || status == 307 || status == 308;
}

// A host that somebody else asks something of is asked again after this time, or after the pause.
constexpr CrawlDuration kShortestTurn{100};

}  // namespace

HostMemory& Crawler::MemoryOf(HostId host) {
  return memories_.try_emplace(host, HostMemory{HostPace(options_.delay)}).first->second;
}

void Crawler::QueueHost(HostId host, int depth) {
  HostMemory& memory = MemoryOf(host);
  if (!memory.given_up) schedule_.Queue(host, depth, memory.pace.ready(), world_.loop.Now());
}

std::optional<OfferedPage> Crawler::Offer(const PageOffer& offer) {
  const auto offered = collection_.Offer(offer);
  if (Failed(offered)) return std::nullopt;
  if (offered.value().queued) QueueHost(offered.value().host, offer.depth);
  if (!offered.value().nearer) return offered.value();
  const auto queue = [this](HostId host, int depth) { QueueHost(host, depth); };
  if (Failed(collection_.CarryNearer(offered.value().page, offer.depth, options_.depth, queue))) return std::nullopt;
  return offered.value();
}

void Crawler::QueueRefusedOf(HostId host, std::string_view reason) {
  const auto nearest = collection_.QueueRefusedOf(host, reason);
  if (!Failed(nearest) && nearest.value()) QueueHost(host, *nearest.value());
}

void Crawler::Enter(HostId host) {
  Result<HostRow> row = collection_.Host(host);
  if (Failed(row)) return;
  auto visit = std::make_unique<HostVisit>(HostVisit{row.take(), MemoryOf(host)});
  UseStoredRobots(*visit);
  schedule_.AskAt(host, visit->memory.pace.ready());
  visits_[host] = std::move(visit);
}

bool Crawler::RobotsAreOld(const HostRow& host) const {
  if (!host.robots_time) return true;
  const std::int64_t age = world_.clock.UtcSeconds() - *host.robots_time;
  return age < 0 || age >= kRobotsAge;
}

// robots.txt is kept in the collection, over runs.
void Crawler::UseStoredRobots(HostVisit& visit) {
  visit.rules_known = !options_.obey_robots;
  if (const auto kept = unstored_rules_.find(visit.row.id); kept != unstored_rules_.end()) {
    visit.row.robots = kept->second.rules;
    visit.row.robots_time = kept->second.time;
  }
  if (!visit.rules_known && !RobotsAreOld(visit.row)) SetRules(visit);
}

void Crawler::SetRules(HostVisit& visit) {
  visit.rules_known = true;
  visit.rules = RobotsRules(visit.row.robots, kCrawlAgent);
  visit.memory.pace.SetCrawlDelay(Seconds(visit.rules.delay().value_or(0)));
}

void Crawler::Leave(HostVisit& visit, std::optional<int> depth) {
  const HostId host = visit.row.id;
  schedule_.Deactivate(host);
  if (depth) QueueHost(host, *depth);
  visits_.erase(host);
}

// The host's next page. The visit has ended where there is none.
std::optional<WaitingPage> Crawler::NextPage(HostVisit& visit) {
  auto next = collection_.Next(visit.row.id);
  if (Failed(next)) return std::nullopt;
  if (next.value() && static_cast<std::uint64_t>(visit.row.read) >= options_.pages_per_host) {
    SetReason(visit, "its budget of " + Counted(options_.pages_per_host, "page") + " is used up");
    next.value().reset();
  }
  if (!next.value()) Leave(visit, std::nullopt);
  return next.take();
}

// Asks for the host's next page, or for its robots.txt before.
void Crawler::Ask(HostVisit& visit) {
  if (visit.under_way != HostVisit::UnderWay::kNothing) return;
  // The robots.txt of another host may have redirected here.
  if (visit.memory.asked)
    return schedule_.AskAt(visit.row.id, world_.loop.Now() + std::max(options_.delay, kShortestTurn));
  if (visit.memory.pace.ready() > world_.loop.Now() && !visit.robots_url) return Continue(visit);
  if (visit.rules_known && options_.obey_robots && RobotsAreOld(visit.row)) visit.rules_known = false;
  for (int refused = 0; refused < kMostRefusedInARow; ++refused) {
    auto next = NextPage(visit);
    if (!next) return;
    if (!visit.robots_url && schedule_.IsNearerQueued(next->depth)) return Leave(visit, next->depth);
    if (options_.pages && figures_.pages + page_requests_ >= *options_.pages) return held_.push_back(visit.row.id);
    visit.page = std::move(next);
    visit.url = ParseUrl(visit.page->url, nullptr, world_.idna);
    // Nobody is asked for the rules of pages that are not to be visited anyway.
    if (JudgePage(visit)) return visit.rules_known ? AskForPage(visit) : AskForRobots(visit);
    if (!failure_.ok()) return;
  }
  schedule_.AskAt(visit.row.id, world_.loop.Now());
}

// True when the page may be asked for, as far as is known without the host's rules; otherwise its visit has ended.
bool Crawler::JudgePage(HostVisit& visit) {
  PageEnd end;
  end.state = PageState::kRefused;
  if (!visit.url) {
    end.reason = "address";
  } else if (visit.page->depth > options_.depth) {
    end.reason = kRefusedDepth;
  } else if (!scope_.Contains(*visit.url) && !IsStart(visit.page->page)) {
    end.reason = kRefusedScope;
  } else if (options_.obey_robots && visit.rules_known) {
    const RobotsRules::Verdict verdict = visit.rules.Check(visit.url->target());
    if (verdict.allowed) return true;
    end.reason = kRefusedRobots;
    end.line = static_cast<int>(verdict.line.value_or(0));
    end.rule = WithoutUnwanted(RobotsLine(visit.row.robots, end.line), NotSuppressed());
    ++figures_.refused;
    TellOfRefusedStart(visit, end);
  } else {
    return true;
  }
  EndPage(visit, end);
  return false;
}

void Crawler::AskForPage(HostVisit& visit) {
  WebRequest request = RequestFor(visit.url->href(), visit.page->may_be_private);
  if (visit.page->read_before && !pass_.whole) {
    request.if_none_match = visit.page->etag;
    request.if_modified_since = visit.page->modified;
  }
  visit.under_way = HostVisit::UnderWay::kPage;
  ++page_requests_;
  visit.asked_of = &visit.memory;
  Send(visit, std::move(request));
}

// A redirect of robots.txt is asked for when the host where it leads may be asked.
void Crawler::AskForRobots(HostVisit& visit) {
  if (!visit.robots_url) {
    visit.robots_url = ParseUrl(visit.row.origin + "/robots.txt", nullptr, world_.idna);
    visit.robots_host = visit.row.id;
    visit.robots_may_be_private = visit.page->may_be_private;
    visit.robots_hops = 0;
  }
  HostMemory& asked_of = MemoryOf(visit.robots_host);
  visit.asked_of = &asked_of;
  const CrawlTime now = world_.loop.Now();
  if (asked_of.asked) return schedule_.AskAt(visit.row.id, now + std::max(options_.delay, kShortestTurn));
  if (asked_of.pace.ready() > now) return schedule_.AskAt(visit.row.id, asked_of.pace.ready());
  if (!visit.robots_url) return UseRobots(visit, {}, "");
  WebRequest request = RequestFor(visit.robots_url->href(), visit.robots_may_be_private);
  request.body_limit = kMostRobotsBytes + 1;  // one more shows that the last line may have been cut
  visit.under_way = HostVisit::UnderWay::kRobots;
  Send(visit, std::move(request));
}

void Crawler::Send(HostVisit& visit, WebRequest request) {
  ++requests_;
  ++sent_;
  visit.asked_of->asked = true;
  visit.asked_at = world_.loop.Now();
  world_.client.Start(std::move(request), std::to_string(visit.row.id));
}

// The host has answered: it is not given up any more.
void Crawler::NoteAnswer(HostVisit& visit) {
  visit.memory.answered = true;
  if (visit.row.state == kHostAnswers) return;
  visit.row.state = kHostAnswers;
  visit.row.reason.clear();
  Failed(collection_.SaveHostState(visit.row.id, kHostAnswers, ""));
}

void Crawler::OnRobotsAnswer(HostVisit& visit, const WebAnswer& answer) {
  const int status = answer.head.status;
  const Url asked = *visit.robots_url;
  // A public host that redirects to a private place has no robots.txt that could be had. Where the host is private
  // itself, its pages will be refused for the same reason.
  if (answer.failure == WebFailure::kPrivateAddress) return UseRobots(visit, answer, "");
  if (answer.failure != WebFailure::kNone && visit.robots_hops == 0) return OnSilence(visit, answer);
  if (answer.failure != WebFailure::kNone) {
    const std::string place = NamesSuppressed(asked.href()) ? "another place" : asked.href();
    return OnNoRobots(visit, answer, "its robots.txt leads to " + place + ": " + answer.message);
  }
  if (IsRedirect(status)) {
    const std::string* const location = answer.head.Find("Location");
    const auto to = location ? AsPage(ParseUrl(*location, &asked, world_.idna), world_.idna) : std::nullopt;
    if (to && ++visit.robots_hops <= kMostRobotsHops) return FollowRobots(visit, answer, asked, *to);
  }
  if (status >= 500) return OnNoRobots(visit, answer, "its robots.txt answers with status " + std::to_string(status));
  // Where there are no rules, everything is allowed.
  UseRobots(visit, answer, status <= 299 ? std::string_view(answer.body) : std::string_view());
}

void Crawler::FollowRobots(HostVisit& visit, const WebAnswer& answer, const Url& from, const Url& to) {
  visit.robots_may_be_private = visit.robots_may_be_private && CameFromPrivatePlace(from, answer);
  visit.robots_url = to;
  visit.asked_of->pace.OnAnswer(world_.loop.Now(), answer.duration);
  const auto host = collection_.HostOf(to, SiteOf(to));
  if (Failed(host)) return;
  visit.robots_host = host.value();
  schedule_.AskAt(visit.row.id, MemoryOf(visit.robots_host).pace.ready());
}

// The host's rules for the next 24 hours. robots.txt counts as a page for the pause.
void Crawler::UseRobots(HostVisit& visit, const WebAnswer& answer, std::string_view rules) {
  HostMemory& memory = visit.memory;
  const bool redirected = visit.robots_host != visit.row.id;
  const bool other_rules = visit.row.robots != rules;
  visit.robots_url.reset();
  visit.row.robots = rules;
  visit.row.robots_status = answer.head.status;
  visit.row.robots_time = world_.clock.UtcSeconds();
  SetRules(visit);
  memory.refusals = 0;
  SetReason(visit, "");
  NoteProgress();
  if (answer.failure == WebFailure::kNone || visit.robots_hops > 0) {
    if (Failed(StoreRobots(visit.row))) return;
    if (other_rules) QueueRefusedOf(visit.row.id, kRefusedRobots);
  }
  HostPace& pace = visit.asked_of->pace;
  if (answer.head.status == 429) {
    pace.OnBusy(world_.loop.Now(), answer.duration, RetryAfterOf(answer));
    SaveWait(visit.robots_host, pace);
  } else {
    pace.OnAnswer(world_.loop.Now(), answer.duration);
  }
  if (redirected) memory.pace.OnAnswer(world_.loop.Now(), CrawlDuration{0});
  Continue(visit);
}

// Rules that lack an address would be other rules. So those that name a suppressed one are fetched again by the next
// run.
Status Crawler::StoreRobots(const HostRow& host) {
  unstored_rules_.erase(host.id);
  if (!NamesSuppressed(host.robots)) {
    return collection_.SaveRobots(host.id, *host.robots_time, host.robots_status, host.robots);
  }
  unstored_rules_[host.id] = {host.robots, *host.robots_time};
  return collection_.ForgetRobots(host.id);
}

// The rules cannot be had: nothing may be asked for until they can.
void Crawler::OnNoRobots(HostVisit& visit, const WebAnswer& answer, const std::string& reason) {
  visit.asked_of->pace.OnFailure(world_.loop.Now(), answer.duration);
  const bool gives_up = visit.memory.refusals >= static_cast<int>(std::size(kWaits));
  const std::optional<CrawlDuration> asked_for = RetryAfterOf(answer);
  CrawlDuration wait = asked_for.value_or(CrawlDuration{0});
  if (!gives_up) wait = std::max(wait, kWaits[visit.memory.refusals++]);
  if (wait.count() > 0) visit.memory.pace.Park(world_.loop.Now(), wait);
  if (asked_for) SaveWait(visit.row.id, visit.memory.pace);
  if (gives_up) return GiveUp(visit, reason);
  SetReason(visit, reason);
  Leave(visit, visit.page->depth);
}

// The host has given no answer. Its pages are left where they are.
void Crawler::OnSilence(HostVisit& visit, const WebAnswer& answer) {
  if (IsOffLine()) {
    offline_ = true;
    return;
  }
  FallBackToHttp(visit, answer);
  const auto next = collection_.Next(visit.row.id);
  if (!failure_.ok() || Failed(next)) return;
  if (!next.value()) return Leave(visit, std::nullopt);
  if (visit.memory.refusals >= static_cast<int>(std::size(kWaits))) return GiveUp(visit, answer.message);
  const CrawlDuration wait = kWaits[visit.memory.refusals++];
  SetReason(visit, answer.message);
  visit.memory.pace.Park(world_.loop.Now(), wait);
  Leave(visit, next.value()->depth);
}

// A later run waits too.
void Crawler::SaveWait(HostId host, const HostPace& pace) {
  const auto left = std::chrono::ceil<std::chrono::seconds>(pace.ready() - world_.loop.Now());
  Failed(collection_.SaveWait(host, world_.clock.UtcSeconds() + left.count()));
}

void Crawler::SetReason(HostVisit& visit, const std::string& reason) {
  visit.memory.reason = reason;
  if (visit.row.reason == reason) return;
  visit.row.reason = reason;
  Failed(collection_.SaveHostState(visit.row.id, visit.row.state, reason));
}

bool Crawler::CountFailure(HostVisit& visit, const std::string& reason) {
  if (++visit.memory.failures < kMostFailures) return false;
  GiveUp(visit, std::to_string(kMostFailures) + " failures in a row, the last one: " + reason);
  return true;
}

void Crawler::GiveUp(HostVisit& visit, const std::string& reason) {
  visit.memory.given_up = true;
  visit.row.state = kHostGivenUp;
  visit.row.reason.clear();
  SetReason(visit, reason);
  if (!failure_.ok()) return;
  Leave(visit, std::nullopt);
}

// The host's next page is asked for when its time comes. A host without one, or one that asked to wait, makes room for
// others at once.
void Crawler::Continue(HostVisit& visit) {
  if (!failure_.ok()) return;
  const auto next = NextPage(visit);
  if (!next) return;
  if (visit.memory.pace.parked()) return Leave(visit, next->depth);
  schedule_.AskAt(visit.row.id, visit.memory.pace.ready());
}

std::optional<CrawlDuration> Crawler::RetryAfterOf(const WebAnswer& answer) const {
  const std::string* const value = answer.head.Find("Retry-After");
  return value ? RetryAfter(*value, world_.clock.UtcSeconds()) : std::nullopt;
}

}  // namespace quenlar
