// The part of Crawler that deals with starts: site addresses and keywords.
#include <utility>

#include "crawl/contact_words.h"
#include "crawl/crawler.h"
#include "crawl/search_service.h"

namespace quenlar {
namespace {

constexpr const char* kSite = "site";
constexpr const char* kKeyword = "keyword";
constexpr const char* kResult = "result";
constexpr const char* kSearchKey = "s";

}  // namespace

bool IsSiteText(std::string_view text) {
  return text.find('.') != std::string_view::npos && text.find_first_of(" \t") == std::string_view::npos;
}

void Crawler::AddStarts(const std::vector<std::string>& texts) {
  for (const std::string& text : texts) {
    const bool site = IsSiteText(text) || text.starts_with("http://") || text.starts_with("https://");
    const auto start = collection_.AddStart(text, site ? kSite : kKeyword, 0);
    if (Failed(start)) return;
    site ? AddSite(start.value()) : AddKeyword(start.value());
  }
  // Starts of earlier runs, and results of earlier searches, open their scopes too.
  const auto all = collection_.Starts();
  if (Failed(all)) return;
  for (const StartRow& start : all.value()) {
    if (!start.host.empty()) scope_.Open(start.host, start.site);
    if (start.page != 0) start_pages_.emplace(start.page, start.id);
  }
}

void Crawler::AddSite(const StartRow& start) {
  const bool scheme_typed = start.text.starts_with("http://") || start.text.starts_with("https://");
  const auto url = ParseUrl(scheme_typed ? start.text : "https://" + start.text, nullptr, world_.idna);
  if (!url) {
    start_problems_.push_back(start.text + ": this is not a web address");
    return;
  }
  if (start.page == 0) return PlaceSite(start, *url, scheme_typed, true);
  const auto host = collection_.HostOfPage(start.page);
  if (Failed(host)) return;
  start_hosts_[start.text] = host.value();
  if (!scheme_typed) may_fall_back_.insert(start.page);
}

void Crawler::PlaceSite(const StartRow& start, const Url& url, bool scheme_typed, bool typed) {
  PageOffer offer{url, SiteOf(url)};
  offer.rank = 0;
  offer.may_be_private = typed;
  offer.by_id = true;
  const auto offered = collection_.Offer(offer);
  if (Failed(offered)) return;
  const std::string authority(AuthorityOf(url));
  if (Failed(collection_.PlaceStart(start.id, offered.value().page, authority, SiteOf(url)))) return;
  scope_.Open(authority, SiteOf(url));
  start_pages_.emplace(offered.value().page, start.id);
  if (typed) start_hosts_[start.text] = offered.value().host;
  if (typed && !scheme_typed) may_fall_back_.insert(offered.value().page);
  if (offered.value().queued) QueueHost(offered.value().host, 0);
}

// Opens the link's site, but is not a start: a redirect does not move it to another site.
void Crawler::AddLink(const HandedLink& link) {
  const auto url = WithoutUser(ParseUrl(link.url, nullptr, world_.idna), world_.idna);
  if (!url || url->href().size() > kLongestPageUrl) {
    start_problems_.push_back(link.url + ": this is not a web address");
    return;
  }
  PageOffer offer{*url, SiteOf(*url)};
  offer.depth = link.depth;
  offer.rank = link.depth == 0 || PromisesContacts(url->path()) ? 0 : 1;
  offer.may_be_private = link.may_be_private;
  offer.by_id = true;
  if (link.depth > options_.depth) offer.refused = kRefusedDepth;
  const auto offered = collection_.Offer(offer);
  if (Failed(offered)) return;
  scope_.Open(AuthorityOf(*url), SiteOf(*url));
  if (link.https_first) may_fall_back_.insert(offered.value().page);
  if (offered.value().queued) QueueHost(offered.value().host, link.depth);
}

// A start that redirects moves: where it ends, its host and site are.
void Crawler::MoveStart(PageId from, PageId to, const Url& url) {
  const auto found = start_pages_.find(from);
  if (found == start_pages_.end()) return;
  const StartId start = found->second;
  const std::string authority(AuthorityOf(url));
  if (Failed(collection_.PlaceStart(start, to, authority, SiteOf(url)))) return;
  start_pages_.emplace(to, start);
  scope_.Open(authority, SiteOf(url));
  collection_.ForgetKnownPages();
}

// A person who names a site wants to know why nothing comes of it.
void Crawler::TellOfRefusedStart(const HostVisit& visit, const PageEnd& end) {
  if (!IsStart(visit.page->page)) return;
  world_.view.OnNotice("The robots.txt of " + visit.row.origin + " does not allow " + visit.page->url + " (line " +
                       std::to_string(end.line) + ": " + end.rule +
                       "); with --robots ignore it is visited all the same");
}

// A start without a scheme is asked for by https first, then by http when nothing answers there.
bool Crawler::FallBackToHttp(HostVisit& visit, const WebAnswer& answer) {
  const bool nothing_answers = answer.failure == WebFailure::kNoConnection || answer.failure == WebFailure::kNoTls ||
                               answer.failure == WebFailure::kTimeout;
  if (!nothing_answers || !visit.url || !visit.url->secure() || may_fall_back_.erase(visit.page->page) == 0) {
    return false;
  }
  const auto url = ParseUrl("http://" + std::string(visit.url->PageKey()), nullptr, world_.idna);
  if (!url) return false;
  const auto host = collection_.Readdress(visit.page->page, *url, SiteOf(*url), 0);
  if (Failed(host)) return true;
  for (auto& [text, start_host] : start_hosts_) {
    if (start_host == visit.row.id) start_host = host.value();
  }
  QueueHost(host.value(), 0);
  schedule_.AskAt(visit.row.id, world_.loop.Now());
  return true;
}

void Crawler::AddKeyword(const StartRow& start) {
  if (start.asked && !options_.again) return;
  if (options_.search_service.empty()) {
    start_problems_.push_back(
        start.text +
        ": a keyword needs a search service; name one with --search URL (any SearXNG service that answers in JSON)");
    return;
  }
  search_.keywords.push_back(start);
}

void Crawler::AskSearchService() {
  if (search_.keywords.empty() || search_.under_way || search_.pace.ready() > world_.loop.Now()) return;
  const StartRow& keyword = search_.keywords.front();
  search_.under_way = true;
  ++requests_;
  const std::string url = SearchUrl(options_.search_service, keyword.text, options_.language, search_.page);
  world_.client.Start(RequestFor(url, true), kSearchKey);
}

void Crawler::OnSearchAnswer(WebAnswer answer) {
  if (!search_.under_way || !failure_.ok()) return;
  search_.under_way = false;
  --requests_;
  constexpr int kMostBusy = 3;
  const int status = answer.head.status;
  if (answer.failure == WebFailure::kNone && (status == 429 || status == 503) && ++search_.busy < kMostBusy) {
    return search_.pace.OnBusy(world_.loop.Now(), answer.duration, RetryAfterOf(answer));
  }
  search_.pace.OnAnswer(world_.loop.Now(), answer.duration);
  const SearchReply reply = ReadSearchAnswer(options_.search_service, answer);
  const StartId keyword = search_.keywords.front().id;
  bool brought_new = false;
  for (const std::string& text : reply.urls) {
    const auto url = ParseUrl(text, nullptr, world_.idna);
    if (!url || !search_.seen.emplace(url->PageKey()).second) continue;
    brought_new = true;
    const auto start = collection_.AddStart(url->href(), kResult, keyword);
    if (Failed(start)) return;
    if (start.value().page == 0) PlaceSite(start.value(), *url, true, false);
  }
  if (!brought_new || ++search_.page > kMostSearchPages) EndSearch(reply.problem);
}

// The first keyword has brought what it can. One that failed is asked for again by the next run.
void Crawler::EndSearch(const std::string& problem) {
  const StartRow keyword = std::move(search_.keywords.front());
  search_.keywords.pop_front();
  const bool found = !search_.seen.empty();
  if (!found) start_problems_.push_back(keyword.text + ": " + (problem.empty() ? "the search finds nothing" : problem));
  if (found || problem.empty()) Failed(collection_.MarkAsked(keyword.id, world_.clock.UtcSeconds()));
  search_.page = 1;
  search_.busy = 0;
  search_.seen.clear();
}

}  // namespace quenlar
