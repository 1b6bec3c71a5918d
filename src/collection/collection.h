// A collection: one database file with hosts, pages, addresses and sightings. The crawl writes it; the commands and the
// window read it. docs/collections.md describes the file.
#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "base/status.h"
#include "collection/database.h"
#include "collection/known_pages.h"
#include "collection/page_keys.h"
#include "page/address_place.h"
#include "page/url.h"
#include "platform/files.h"

namespace quenlar {

using HostId = std::int64_t;
using PageId = std::int64_t;   // 0: none
using StartId = std::int64_t;  // 0: none

enum class PageState {
  kWaiting,  // still to visit
  kRead,     // its addresses and links are here
  kFailed,   // no answer, or one that holds no page
  kRefused,  // not asked for: robots, depth, scope, a private address, a trap
  kMoved,    // redirects to another page
};
[[nodiscard]] std::string_view NameOf(PageState state);

// Refusals that another way to the page, or other options, may lift.
inline constexpr std::string_view kRefusedPrivate = "private";
inline constexpr std::string_view kRefusedRobots = "robots";
inline constexpr std::string_view kRefusedDepth = "depth";
inline constexpr std::string_view kRefusedScope = "scope";
// The page redirects to an address that names a suppressed one.
inline constexpr std::string_view kRefusedSuppressed = "suppressed";

// A page that a start, a link or a redirect leads to. The views must outlive the call.
struct PageOffer {
  const Url& url;
  std::string_view site;        // registrable domain of the host, or the host itself where it has none
  int depth = 0;                // clicks from a start
  int rank = 2;                 // among pages of one depth of a host: 0 before 1 before 2
  int hops = 0;                 // redirects that led here
  PageId parent = 0;            // the page with the link
  bool may_be_private = false;  // a start that a person typed, or a link on a page of a private place
  bool by_id = false;           // the page and its host are wanted even where nothing changes
  bool is_start = false;        // a person names it: whatever refused it is judged anew
  std::string_view refused{};   // why it is not to be visited: kRefusedDepth, kRefusedScope, "trap"; empty: it is
};

struct OfferedPage {
  PageId page = 0;
  HostId host = 0;
  std::int64_t key = 0;
  bool queued = false;  // it waits now and did not before, or waits nearer to a start than before
  bool nearer = false;  // it was visited before, and is nearer to a start now: so is what it links to
};

// A page that the collection holds.
struct KnownPage {
  PageId page = 0;
  HostId host = 0;
  std::string url;
  int depth = 0;
  std::string state, reason;
  bool may_be_private = false;
  bool read_before = false;
  bool erased = false;  // `url` is not its address any more
  PageId moved_to = 0;

  [[nodiscard]] bool Is(PageState wanted) const { return state == NameOf(wanted); }
};

struct WaitingPage {
  PageId page = 0;
  std::string url;
  int depth = 0;
  int hops = 0;
  bool may_be_private = false;
  std::string etag, modified;  // of the answer when it was read before; empty without one
  bool read_before = false;
};

struct SeenAddress {
  std::string_view address, written;
  AddressPlace place;
};

// The end of a page's visit.
struct PageEnd {
  PageState state = PageState::kRead;
  // One word or a short phrase, for `why`. Of a page that was read: what was not taken from it, empty: all was.
  std::string reason{};
  std::string rule{};  // the line of robots.txt that forbids it
  int line = 0;        // the number of that line; 0: none
  int status = 0;      // of the answer; 0: none
  std::string type{};  // media type without parameters
  std::string title{};
  std::uint64_t bytes = 0;                  // received
  std::optional<std::int64_t> body_hash{};  // of the decoded body, see Collection::HashOf
  PageId moved_to = 0;
  bool gone = false;  // its address shows something else now: so do not the addresses that it showed
  std::size_t protected_count = 0, filtered_count = 0;
  std::string etag{}, modified{};
};

// The reason of a page that counts as read because an archive had it. A crawl visits it when it is led to it.
inline constexpr std::string_view kReadInArchive = "archive";

// A page that was read out of an archive or a file, not visited. The views must outlive the call.
struct ArchivedPage {
  std::string_view url;         // its address, or the name of the file
  const Url* parsed = nullptr;  // of its address; null for a file
  std::string_view site{};      // registrable domain of its host; empty for a file
  std::string_view type{}, title{};
  int status = 0;                  // of the answer; 0: none
  std::int64_t seen = 0;           // when it was fetched
  std::size_t filtered_count = 0;  // of its addresses
};

// States of a host in the database, besides "new": nothing has been asked for yet, or no answer has come.
inline constexpr std::string_view kHostAnswers = "answers";
inline constexpr std::string_view kHostGivenUp = "given up";

struct HostRow {
  HostId id = 0;
  std::string origin;  // "https://www.example.org", the port where it is not the scheme's own
  std::string site;
  std::string state;  // "new", kHostAnswers or kHostGivenUp
  std::string reason;
  std::int64_t read = 0;                    // pages read, over all runs
  std::optional<std::int64_t> robots_time;  // when robots.txt was fetched; empty: never
  int robots_status = 0;                    // of that answer; 0: there was none
  std::string robots;                       // its body where it is a page of rules
};

struct RunRecord {
  std::int64_t started = 0, ended = 0;
  std::string reason;
  std::uint64_t pages = 0, failed = 0, refused = 0, fresh = 0, protected_count = 0, filtered = 0, bytes = 0;
  double seconds = 0;
};

struct StartRow {
  StartId id = 0;
  std::string text, kind;  // kinds: site, keyword, result (of a keyword)
  PageId page = 0;
  std::string host, site;             // where it lies, redirects followed; empty before it was placed
  std::optional<std::int64_t> asked;  // a keyword's last search
};

// One visit of everything that is to be visited, over as many runs as it takes.
struct Pass {
  bool later = false;    // pages were visited before it
  bool goes_on = false;  // a new one was asked for, but this one has not ended
  bool whole = false;    // pages are fetched whole: what was taken from them before would not be taken now
};

// The rows of sql::kStarts.
[[nodiscard]] Result<std::vector<StartRow>> ReadStarts(Statement& rows);

// Times are seconds since 1970 UTC. No member pumps. After a failure (a full disk, a damaged file) what was not
// committed is gone, and the object is only good for Forget, its counts, and being destroyed.
class Collection {
 public:
  struct Opened {
    std::unique_ptr<Collection> collection;
    std::string kept_aside;  // the name under which a damaged file lies now; empty: it was sound
  };
  // For a run: the file is made where there is none, brought up to date where its schema is older, and kept aside where
  // it is damaged. kLimit, with a message, where a newer program has made it.
  [[nodiscard]] static Result<Opened> Open(Files& files, const std::string& path);
  ~Collection();
  Collection(const Collection&) = delete;
  Collection& operator=(const Collection&) = delete;

  // Every change below belongs to the transaction at hand, and only these two commit it. Call them between two pages,
  // so that a page's end, its addresses and its links are not parted.
  //
  // Commits and waits for the disk: everything survives a loss of power from now on.
  Status Commit();
  // Commits: everything survives the end of the program from now on, and a loss of power about a second later. Waits
  // for the disk once a second at most, so it is cheap behind every page.
  Status CommitSoon();

  // Takes back what was not committed, also in the counts below. For the end after a failure.
  void Forget();

  // A text that the collection remembers under a name, from run to run; "" where it does not.
  [[nodiscard]] Result<std::string> Fact(std::string_view name);
  Status SetFact(std::string_view name, std::string_view value);

  // Begins the record of a run, at `now`.
  Status BeginRun(std::int64_t now);
  // Writes how far the run that BeginRun has begun is. May be called as often as wanted; `started` is not looked at. A
  // run whose last record has `ended` 0 was cut short.
  Status SaveRun(const RunRecord& run);
  // Whether a run was cut short, by a kill or by a loss of power.
  [[nodiscard]] bool last_run_unfinished() const { return last_run_unfinished_; }

  // Starts. Ids must be those of this collection: a change of an unknown one changes nothing, and succeeds.
  //
  // Adding a text that is there gives the start that is there. `kind` as in StartRow; `parent` is the keyword of a
  // result, otherwise 0.
  [[nodiscard]] Result<StartRow> AddStart(std::string_view text, std::string_view kind, StartId parent);
  // Stores where a start lies: its page (0: none), the host and the site of that page.
  Status PlaceStart(StartId start, PageId page, std::string_view host, std::string_view site);
  // The search for a keyword is complete; this pass does not search for it again.
  Status MarkAsked(StartId keyword, std::int64_t now);
  [[nodiscard]] Result<std::vector<StartRow>> Starts();

  // Hosts. `host` must be one of this collection: of an unknown one Host gives an empty row, and a change of it changes
  // nothing, and succeeds.
  [[nodiscard]] Result<HostRow> Host(HostId host);
  // `state` as in HostRow, and why it is so; "" where nothing is to be said.
  Status SaveHostState(HostId host, std::string_view state, std::string_view reason);
  // The host's robots.txt was asked for at `now`: the answer's status (0: none), and its body where it has rules.
  Status SaveRobots(HostId host, std::int64_t now, int status, std::string_view rules);
  // What was saved of its robots.txt is not known any more.
  Status ForgetRobots(HostId host);
  // The host asked not to be asked before `until`.
  Status SaveWait(HostId host, std::int64_t until);
  // Calls `each` for every host that is not to be asked before a time after `now`.
  Status Waits(std::int64_t now, const std::function<void(HostId host, std::int64_t until)>& each);
  // The host of a URL, which is put in where it is not known. `site` as in PageOffer.
  [[nodiscard]] Result<HostId> HostOf(const Url& url, std::string_view site);
  // All hosts of a site; the hosts of both schemes at "example.org:8080".
  [[nodiscard]] Result<std::vector<HostId>> HostsOfSite(std::string_view site);
  [[nodiscard]] Result<std::vector<HostId>> HostsOfAuthority(std::string_view authority);
  // How many of its pages are still to visit.
  [[nodiscard]] Result<std::int64_t> WaitingOn(HostId host);
  // Calls `each` for every host with pages that wait, with the least depth among them.
  using EachHost = std::function<void(HostId host, int depth)>;
  Status HostsWaiting(const EachHost& each);

  // Pages.
  // Puts the page in, or finds it. A page that is known at this depth or nearer, and for which nothing changes, may
  // come back with its key alone unless the offer is `by_id`: most links of a site cost no look-up.
  [[nodiscard]] Result<OfferedPage> Offer(const PageOffer& offer);
  [[nodiscard]] Result<KnownPage> Page(PageId page);
  // Page 0 where the collection does not hold it.
  [[nodiscard]] Result<KnownPage> FindPage(const Url& url);
  // Where the redirects of a page that is known end: the page itself where it does not redirect. Page 0 where they lead
  // to `circle`, or in a circle of their own.
  [[nodiscard]] Result<KnownPage> LastOfRedirects(PageId page, PageId circle);
  // What a page links to, by the keys of the offers.
  Status SaveLinks(PageId page, const std::vector<std::int64_t>& keys);
  // Call it when a page that was visited turns out to be only `depth` clicks from a start. Writes the smaller depth of
  // everything that can be reached from it. Pages that were refused for their depth, and are not deeper than `deepest`
  // now, are queued. Calls `queued`, with host and new depth, for each page that has come nearer and waits. A page that
  // the collection does not hold changes nothing.
  Status CarryNearer(PageId page, int depth, int deepest, const EachHost& queued);
  // The next page of a host: the least depth first, then the lower rank, then as found.
  [[nodiscard]] Result<std::optional<WaitingPage>> Next(HostId host);
  // A page that waits is to be asked for at another URL of the same identity: under the other scheme, or once more.
  // Gives its host.
  [[nodiscard]] Result<HostId> Readdress(PageId page, const Url& url, std::string_view site, int hops);
  // Ends the visit of a page that waited. Gives the positions in `addresses` of those that the collection did not hold.
  [[nodiscard]] Result<std::vector<std::size_t>> End(HostId host, PageId page, const PageEnd& end,
                                                     const std::vector<SeenAddress>& addresses, std::int64_t now);
  // Puts in what an archived page shows. A page that the collection has already stays as it is but for its sightings,
  // which were seen at this time too. A new one counts as read. Gives the positions in `addresses` of those that the
  // collection did not hold.
  [[nodiscard]] Result<std::vector<std::size_t>> AddArchived(const ArchivedPage& page,
                                                             const std::vector<SeenAddress>& addresses);
  // Ends the visit of a page that has not changed since it was read (status 304).
  Status EndUnchanged(HostId host, PageId page, std::int64_t now);
  // Whether another page of the host was read with this body.
  [[nodiscard]] Result<bool> BodySeen(HostId host, PageId page, std::int64_t body_hash);
  // Of a body, or of a page's identity.
  [[nodiscard]] std::int64_t HashOf(std::string_view text) const { return keys_.Of(text); }

  // Queues the pages anew that were refused for `reason`, unless `option`, by which that was decided, is the same as in
  // the run before. They are judged again when it is their turn. With kRefusedRobots also those that were read, but
  // asked that their addresses are not listed or their links are not followed.
  Status QueueRefused(std::string_view reason, std::string_view option);
  // Queues those of one host anew. Gives the least depth of its pages that wait; empty where none was queued.
  [[nodiscard]] Result<std::optional<int>> QueueRefusedOf(HostId host, std::string_view reason);

  // Begins a pass or goes on with the one at hand. With `again`, and when the last one has ended, all pages that were
  // visited are queued anew; hosts count their pages from 0 on, keywords are searched for again. `reading` says what is
  // taken from a page: where it is another text than before, pages are fetched whole even if they have not changed.
  [[nodiscard]] Result<Pass> BeginPass(bool again, std::string_view reading);
  // Everything of the pass at hand has been visited. Until this is called, `again` goes on with the same pass while
  // pages wait.
  Status EndPass();

  [[nodiscard]] std::int64_t waiting() const { return waiting_; }  // pages still to visit
  [[nodiscard]] std::int64_t addresses() const { return addresses_; }

 private:
  struct Statements;

  explicit Collection(std::unique_ptr<Database> database);
  Status Prepare();
  Status MakeSchema();
  Status LoadCounts();
  // Begins a transaction where none is open.
  Status Begin();
  [[nodiscard]] Result<OfferedPage> OfferKnown(const PageOffer& offer, std::int64_t key);
  [[nodiscard]] Result<OfferedPage> AddPage(const PageOffer& offer, std::int64_t key);
  [[nodiscard]] Result<HostId> HostOfOrigin(std::string origin, std::string_view site);
  [[nodiscard]] Result<PageId> ArchivedPageId(const ArchivedPage& page);
  // `add` is the statement that puts one sighting in.
  [[nodiscard]] Result<std::vector<std::size_t>> AddSightings(PageId page, const std::vector<SeenAddress>& addresses,
                                                              std::int64_t now, Statement& add);
  // From the row at hand of sql::kPage or sql::kFindPage.
  [[nodiscard]] static KnownPage ReadKnown(const Statement& row);
  // The row of sql::kFindPage for this identity; false where there is none.
  [[nodiscard]] Result<bool> FindRow(std::int64_t key, std::string_view page_key);
  [[nodiscard]] Result<std::vector<KnownPage>> LedTo(const KnownPage& page);
  Status BringNearer(const KnownPage& page, PageId parent, int depth, int deepest, const EachHost& queued);
  Status QueueVisited();
  Status Sync();
  [[nodiscard]] Status CheckFiles();

  std::unique_ptr<Database> database_;
  std::unique_ptr<Statements> statements_;
  PageKeys keys_;
  KnownPages known_;
  std::unordered_map<std::string, HostId> host_ids_;  // some of them, by origin
  std::chrono::steady_clock::time_point synced_{};    // when what is committed was last given to the disk
  bool syncs_ = true;                                 // the transaction at hand waits for the disk when it is committed
  bool unsynced_ = false;                             // something is committed that the disk may not have yet
  std::int64_t run_ = 0;
  bool last_run_unfinished_ = false;
  std::int64_t waiting_ = 0, addresses_ = 0;
  std::int64_t committed_waiting_ = 0, committed_addresses_ = 0;
};

}  // namespace quenlar
