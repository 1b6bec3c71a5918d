// The part of Crawler that turns keywords into starts: it asks a search service.
#include <utility>

#include "crawl/crawler.h"
#include "crawl/search_service.h"

namespace quenlar {
namespace {

constexpr const char* kKeyword = "keyword";
constexpr const char* kResult = "result";
constexpr const char* kSearchKey = "s";

}  // namespace

void Crawler::AddKeyword(const std::string& text) {
  const auto start = collection_.AddStart(text, kKeyword, 0);
  if (Failed(start) || start.value().asked) return;
  if (options_.search_service.empty()) {
    no_search_service_ = true;
    start_problems_.push_back(
        text +
        ": a keyword needs a search service (any SearXNG service that answers in JSON); name one with --search URL "
        "or in the web settings");
    return;
  }
  search_.keywords.push_back(start.value());
}

void Crawler::AskSearchService() {
  if (search_.keywords.empty() || search_.under_way || search_.pace.ready() > world_.loop.Now()) return;
  const StartRow& keyword = search_.keywords.front();
  search_.under_way = true;
  ++requests_;
  ++sent_;
  const std::string url = SearchUrl(options_.search_service, keyword.text, options_.language, search_.page);
  WebRequest request = RequestFor(url, true);
  request.keep_wire = false;
  world_.client.Start(std::move(request), kSearchKey);
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
  NoteProgress();
  search_.pace.OnAnswer(world_.loop.Now(), answer.duration);
  const SearchReply reply = ReadSearchAnswer(options_.search_service, answer);
  if (reply.broken) return EndSearch(reply.problem, false);
  const StartId keyword = search_.keywords.front().id;
  bool brought_new = false;
  for (const std::string& text : reply.urls) {
    const auto url = AsPage(ParseUrl(text, nullptr, world_.idna), world_.idna);
    if (!url || NamesSuppressed(url->href()) || !search_.seen.emplace(url->PageKey()).second) continue;
    brought_new = true;
    const auto start = collection_.AddStart(url->href(), kResult, keyword);
    if (Failed(start)) return;
    if (start.value().page == 0) PlaceSite(start.value(), *url, false);
  }
  if (brought_new && ++search_.page <= kMostSearchPages) return;
  EndSearch(reply.problem, reply.problem.empty() || !search_.seen.empty());
}

// The first keyword has brought what it can. A search that broke off, or that found nothing because the service has
// problems, is made again by the next run. One that found something is not: an engine of the service that never answers
// would have it made again for ever.
void Crawler::EndSearch(const std::string& problem, bool complete) {
  const StartRow keyword = std::move(search_.keywords.front());
  search_.keywords.pop_front();
  if (search_.seen.empty() || !problem.empty()) {
    start_problems_.push_back(keyword.text + ": " + (problem.empty() ? "the search finds nothing" : problem));
  }
  if (complete) Failed(collection_.MarkAsked(keyword.id, world_.clock.UtcSeconds()));
  search_.page = 1;
  search_.busy = 0;
  search_.seen.clear();
}

// The service asks to wait for longer than anybody would.
void Crawler::LeaveSearches() {
  while (!search_.keywords.empty()) {
    EndSearch("the search service at " + options_.search_service + " asks to wait; the next run asks it again", false);
  }
}

}  // namespace quenlar
