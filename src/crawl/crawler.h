// A run of a collection: visits pages breadth first, many hosts at a time, with manners.
#pragma once

#include <cstdint>
#include <deque>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "collection/collection.h"
#include "crawl/crawl_options.h"
#include "crawl/crawl_schedule.h"
#include "crawl/crawl_view.h"
#include "crawl/host_visit.h"
#include "crawl/link_rules.h"
#include "page/page_reader.h"
#include "page/unwanted_addresses.h"
#include "platform/clock.h"
#include "platform/event_loop.h"
#include "platform/idna.h"
#include "platform/interface_table.h"
#include "platform/text_decoder.h"
#include "platform/web_client.h"
#include "state/address_filter.h"

namespace quenlar {

// What a crawl works with. References to objects that outlive it.
struct CrawlWorld {
  EventLoop& loop;
  WebClient& client;
  InterfaceTable& interfaces;
  Clock& clock;
  const Idna& idna;
  const TextDecoder& decoder;
  AddressFilter& filter;
  AddressFilter& suppression;  // Keeps() is false for addresses that are never to be listed
  CrawlView& view;
};

class Crawler final : private WebListener {
 public:
  // Takes the client's listener for as long as it lives.
  Crawler(const CrawlWorld& world, Collection& collection, const CrawlOptions& options);
  ~Crawler() override;
  Crawler(const Crawler&) = delete;
  Crawler& operator=(const Crawler&) = delete;

  struct Outcome {
    CrawlEnd end = CrawlEnd::kFinished;
    Status status;  // of a collection that could not be written: the run ended with what was committed so far
    bool no_search_service = false;     // a keyword could not be searched for, because no service is named
    std::vector<std::string> messages;  // what else a person should know of the end, sentences without their ends
  };
  // Pumps. Visits what is to be visited, from `starts` and from earlier runs, until nothing is left, a budget is used
  // up, or Stop was called. What was under way then is visited by the next run.
  [[nodiscard]] Outcome Run(const std::vector<std::string>& starts);

  // Keeps what has arrived and asks for more. Run does so between its pumps. A caller does so inside one of them that
  // lasts long, as behind a message box, so that the run goes on meanwhile. Does not pump.
  void GoOn();

  // Ends the run soon; may be called at any time.
  void Stop() { stopped_ = true; }

  [[nodiscard]] const CrawlFigures& figures() const { return figures_; }
  [[nodiscard]] std::size_t requests() const { return requests_; }        // under way
  [[nodiscard]] std::size_t hosts() const { return schedule_.active(); }  // visited at the same time
  // The `most` hosts whose request takes longest. Looks at all active hosts: for a view that is drawn now and then.
  [[nodiscard]] std::vector<HostUnderWay> Slowest(std::size_t most) const;
  // Of the active hosts without a request the one that is asked next; `seconds` are those until then. Empty without
  // one.
  [[nodiscard]] std::optional<HostUnderWay> NextInPause() const;
  // While nothing is left but hosts that asked to wait: a sentence that names them. Empty otherwise.
  [[nodiscard]] const std::string& waiting_for() const { return waiting_for_; }

 private:
  using Visits = std::unordered_map<HostId, std::unique_ptr<HostVisit>>;
  // Where a start lies.
  struct StartPlace {
    PageId page = 0;
    std::string authority, site;
  };
  // A start of this run.
  struct GivenStart {
    std::string text;
    HostId host = 0;  // of the page where it lies
  };
  // A new address with what the view is to be told of it.
  struct NewRow {
    std::string address, page, title;
    AddressPlace place;
    std::int64_t seen = 0;
  };
  // The rules of a robots.txt that names a suppressed address: they are known to this run alone.
  struct UnstoredRules {
    std::string rules;
    std::int64_t time = 0;  // when they were fetched
  };
  // Keywords that the search service is still asked for; the first one is under way.
  struct Search {
    std::deque<StartRow> keywords;
    std::unordered_set<std::string> seen;  // results of the first keyword
    HostPace pace;
    int page = 1, busy = 0;
    bool under_way = false;
  };

  [[nodiscard]] bool OnHead(const std::string& key, const WebHead& head) override;
  void OnEnd(const std::string& key, WebAnswer answer) override;

  // crawler.cpp: the loop and its end
  void Step();
  [[nodiscard]] Status TakeUpPages();
  [[nodiscard]] Status QueueRefusedPages();
  [[nodiscard]] Status QueueHostsWaiting();
  [[nodiscard]] Status KeepWaits(std::int64_t now);
  // Gives the view the new addresses of what has been committed.
  void GiveRows();
  [[nodiscard]] std::optional<CrawlEnd> BudgetReached() const;
  [[nodiscard]] std::optional<CrawlEnd> EndReached();
  [[nodiscard]] bool WaitsForHosts(CrawlTime now);
  // Somebody has answered, and the run does not merely wait any more.
  void NoteProgress() { alone_since_.reset(); }
  [[nodiscard]] bool NoStartAnswered() const;
  [[nodiscard]] bool IsOffLine();
  [[nodiscard]] WebRequest RequestFor(const std::string& url, bool may_be_private) const;
  void CancelRequests();
  [[nodiscard]] Outcome Finish(CrawlEnd end);
  [[nodiscard]] std::vector<std::string> EndMessages(CrawlEnd end);
  // Remember the first failure of the collection, which ends the run. True where there is one.
  bool Failed(const Status& status);
  template <typename T>
  bool Failed(const Result<T>& result) {
    return !result.ok() && Failed(result.status());
  }

  // crawler_starts.cpp: site addresses
  void AddStarts(const std::vector<std::string>& texts);
  void AddSite(const std::string& text);
  void PlaceSite(const StartRow& start, const Url& url, bool typed);
  void LoadStarts();
  void LoadStart(const StartRow& start);
  void AllowFallback(const KnownPage& page, const Url& typed);
  void OpenScope(std::string_view authority, std::string_view site);
  // The starts that lie on the page `from`, or were typed so, lie at `to` now.
  void MoveStarts(PageId from, PageId to, const Url& url);
  [[nodiscard]] bool IsStart(PageId page) const { return starts_on_.contains(page); }
  void TellOfRefusedStart(const HostVisit& visit, const PageEnd& end);
  void FallBackToHttp(HostVisit& visit, const WebAnswer& answer);
  // The page of these starts is asked for on another host now.
  void StartsAreAskedOn(PageId page, HostId host);
  void AddLink(const HandedLink& link);

  // crawler_search.cpp: keywords
  void AddKeyword(const std::string& text);
  void AskSearchService();
  void OnSearchAnswer(WebAnswer answer);
  void EndSearch(const std::string& problem, bool complete);
  void LeaveSearches();

  // crawler_hosts.cpp: robots.txt, pace, failures
  [[nodiscard]] HostMemory& MemoryOf(HostId host);
  // Offers a page, and takes up what comes of it. Empty: the collection failed.
  std::optional<OfferedPage> Offer(const PageOffer& offer);
  void QueueRefusedOf(HostId host, std::string_view reason);
  void QueueHost(HostId host, int depth);
  void Enter(HostId host);
  // The host is not active any more; with `depth` it is queued again. `visit` is gone afterwards.
  void Leave(HostVisit& visit, std::optional<int> depth);
  std::optional<WaitingPage> NextPage(HostVisit& visit);
  void Ask(HostVisit& visit);
  void UseStoredRobots(HostVisit& visit);
  void SetRules(HostVisit& visit);
  [[nodiscard]] Status StoreRobots(const HostRow& host);
  void AskForRobots(HostVisit& visit);
  void FollowRobots(HostVisit& visit, const WebAnswer& answer, const Url& from, const Url& to);
  void OnRobotsAnswer(HostVisit& visit, const WebAnswer& answer);
  void UseRobots(HostVisit& visit, const WebAnswer& answer, std::string_view rules);
  void OnNoRobots(HostVisit& visit, const WebAnswer& answer, const std::string& reason);
  [[nodiscard]] bool RobotsAreOld(const HostRow& host) const;
  [[nodiscard]] bool JudgePage(HostVisit& visit);
  void AskForPage(HostVisit& visit);
  void Send(HostVisit& visit, WebRequest request);
  void NoteAnswer(HostVisit& visit);
  // These may end the visit.
  void OnSilence(HostVisit& visit, const WebAnswer& answer);
  void GiveUp(HostVisit& visit, const std::string& reason);
  void Continue(HostVisit& visit);
  void SaveWait(HostId host, const HostPace& pace);
  // Why the host's pages are left for now, for the end of the run and for `why`; empty: they are visited.
  void SetReason(HostVisit& visit, const std::string& reason);
  // True where the host was given up.
  [[nodiscard]] bool CountFailure(HostVisit& visit, const std::string& reason);
  [[nodiscard]] std::optional<CrawlDuration> RetryAfterOf(const WebAnswer& answer) const;

  // crawler_pages.cpp: the answer to a page's request
  void OnPageAnswer(HostVisit& visit, const WebAnswer& answer);
  void OnLostPage(HostVisit& visit, const WebAnswer& answer, PageEnd end);
  void OnBusyHost(HostVisit& visit, const WebAnswer& answer, PageEnd end);
  void OnRedirect(HostVisit& visit, const WebAnswer& answer, PageEnd end);
  void OnUnchanged(HostVisit& visit);
  void OnPage(HostVisit& visit, const WebAnswer& answer, PageEnd end);
  [[nodiscard]] bool CameFromPrivatePlace(const Url& url, const WebAnswer& answer) const;
  [[nodiscard]] std::vector<SeenAddress> KeptAddresses(const ReadResult& page, PageEnd& end);
  // Titles and links that name a suppressed address are not stored.
  [[nodiscard]] bool NamesSuppressed(std::string_view text);
  [[nodiscard]] AddressTest NotSuppressed();
  void OfferLinks(const HostVisit& visit, const std::vector<PageLink>& links, bool private_place);
  void EndPage(HostVisit& visit, const PageEnd& end, const std::vector<SeenAddress>& addresses = {});

  const CrawlWorld world_;
  Collection& collection_;
  const CrawlOptions options_;
  const std::string user_agent_;
  CrawlSchedule schedule_;
  ScopeRule scope_;
  Visits visits_;
  std::unordered_map<HostId, HostMemory> memories_;
  std::unordered_map<HostId, UnstoredRules> unstored_rules_;
  std::vector<HostId> held_;  // active hosts that wait because requests under way may use up the budget of pages
  Search search_;
  std::unordered_map<StartId, StartPlace> places_;
  std::unordered_multimap<PageId, StartId> starts_on_;     // pages whose redirects move starts
  std::unordered_multimap<HostId, PageId> may_fall_back_;  // pages of starts that were typed without a scheme
  std::map<StartId, GivenStart> given_;                    // the sites that this run was started with
  std::vector<std::string> start_problems_;
  bool no_search_service_ = false;
  Pass pass_;
  CrawlFigures figures_, committed_;
  std::vector<NewRow> new_rows_;  // not committed yet
  RunRecord record_;
  std::size_t requests_ = 0, page_requests_ = 0;
  std::uint64_t sent_ = 0;  // requests in all
  CrawlTime started_{};
  std::optional<CrawlTime> alone_since_;  // nothing has been left to do since then but to wait for hosts
  std::string waiting_for_;
  bool begun_ = false, stopped_ = false, offline_ = false;
  Status failure_;
};

// Whether the text of a start is a site's address: it has a scheme, or a dot and no blank. Any other is a keyword.
[[nodiscard]] bool IsSiteText(std::string_view text);

// As it is sent to the sites; `contact` may be empty.
[[nodiscard]] std::string CrawlUserAgent(const std::string& contact);

// Whether the head of an answer says that it is a page: HTML, XHTML, plain text, or nothing.
[[nodiscard]] bool IsPageType(const WebHead& head);

}  // namespace quenlar
