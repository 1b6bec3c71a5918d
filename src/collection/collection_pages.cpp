// The part of Collection that holds hosts, pages and sightings.
#include <algorithm>
#include <utility>

#include "collection/collection.h"
#include "collection/collection_sql.h"
#include "collection/statements.h"

namespace quenlar {
namespace {

std::optional<std::string_view> OrNull(const std::string& text) {
  return text.empty() ? std::optional<std::string_view>() : std::string_view(text);
}

// What follows the scheme: it makes two URLs one page.
std::string_view KeyOfUrl(std::string_view url) { return url.substr(std::min(url.find("//") + 2, url.size())); }

// A page that is not there any more takes its addresses with it; one that only failed for now does not.
bool LosesAddresses(const PageEnd& end) {
  return end.gone || end.state == PageState::kRead || end.state == PageState::kMoved || end.status == 404 ||
         end.status == 410;
}

}  // namespace

Result<HostId> Collection::HostOf(const Url& url, std::string_view site) { return HostOfOrigin(url.Origin(), site); }

Result<HostId> Collection::HostOfOrigin(std::string origin, std::string_view site) {
  constexpr std::size_t kMostRemembered = 4096;
  if (const Status begun = Begin(); !begun.ok()) return begun;
  if (const auto known = host_ids_.find(origin); known != host_ids_.end()) return known->second;
  const Result<bool> row = statements_->find_host.Bind(origin).Step();
  if (!row.ok()) return row.status();
  HostId host = 0;
  if (row.value()) {
    host = statements_->find_host.Int(0);
    statements_->find_host.Reset();
  } else {
    if (const Status added = statements_->add_host.Bind(origin, site).Run(); !added.ok()) return added;
    host = database_->LastRowId();
  }
  if (host_ids_.size() >= kMostRemembered) host_ids_.clear();
  host_ids_.emplace(std::move(origin), host);
  return host;
}

Result<HostRow> Collection::Host(HostId id) {
  Statement& row = statements_->host;
  const Result<bool> found = row.Bind(id).Step();
  if (!found.ok()) return found.status();
  HostRow host;
  host.id = id;
  host.origin = row.Text(0);
  host.site = row.Text(1);
  host.state = row.Text(2);
  host.reason = row.Text(3);
  host.read = row.Int(4);
  host.robots = row.Text(5);
  host.robots_status = static_cast<int>(row.Int(6));
  if (!row.IsNull(7)) host.robots_time = row.Int(7);
  row.Reset();
  return host;
}

Result<std::vector<HostId>> Collection::HostsOfSite(std::string_view site) {
  std::vector<HostId> hosts;
  statements_->hosts_of_site.Bind(site);
  for (;;) {
    const Result<bool> row = statements_->hosts_of_site.Step();
    if (!row.ok()) return row.status();
    if (!row.value()) return hosts;
    hosts.push_back(statements_->hosts_of_site.Int(0));
  }
}

Result<std::vector<HostId>> Collection::HostsOfAuthority(std::string_view authority) {
  std::vector<HostId> hosts;
  for (const char* const scheme : {"https://", "http://"}) {
    const std::string origin = scheme + std::string(authority);
    const Result<bool> row = statements_->find_host.Bind(origin).Step();
    if (!row.ok()) return row.status();
    if (row.value()) hosts.push_back(statements_->find_host.Int(0));
    statements_->find_host.Reset();
  }
  return hosts;
}

Result<std::int64_t> Collection::WaitingOn(HostId host) {
  const Result<bool> row = statements_->waiting_on.Bind(host).Step();
  if (!row.ok()) return row.status();
  const std::int64_t count = statements_->waiting_on.Int(0);
  statements_->waiting_on.Reset();
  return count;
}

Status Collection::SaveHostState(HostId host, std::string_view state, std::string_view reason) {
  if (const Status begun = Begin(); !begun.ok()) return begun;
  return statements_->save_host_state.Bind(state, reason, host).Run();
}

Status Collection::SaveRobots(HostId host, std::int64_t now, int status, std::string_view rules) {
  if (const Status begun = Begin(); !begun.ok()) return begun;
  return statements_->save_robots.Bind(rules, status, now, host).Run();
}

Status Collection::ForgetRobots(HostId host) {
  if (const Status begun = Begin(); !begun.ok()) return begun;
  return statements_->forget_robots.Bind(host).Run();
}

Status Collection::SaveWait(HostId host, std::int64_t until) {
  if (const Status begun = Begin(); !begun.ok()) return begun;
  return statements_->save_wait.Bind(host, until).Run();
}

Status Collection::Waits(std::int64_t now, const std::function<void(HostId host, std::int64_t until)>& each) {
  Statement& rows = statements_->waits;
  rows.Reset();
  for (;;) {
    const Result<bool> row = rows.Step();
    if (!row.ok()) return row.status();
    if (!row.value()) return Status::Ok();
    if (rows.Int(1) > now) each(rows.Int(0), rows.Int(1));
  }
}

Status Collection::HostsWaiting(const EachHost& each) {
  Statement& hosts = statements_->hosts_waiting;
  hosts.Reset();
  for (;;) {
    const Result<bool> row = hosts.Step();
    if (!row.ok()) return row.status();
    if (!row.value()) return Status::Ok();
    each(hosts.Int(0), static_cast<int>(hosts.Int(1)));
  }
}

Result<OfferedPage> Collection::Offer(const PageOffer& offer) {
  const std::int64_t key = HashOf(offer.url.PageKey());
  // That a page may be private is news of its own.
  const std::int64_t known = offer.may_be_private ? ~key : key;
  OfferedPage nothing_new;
  nothing_new.key = key;
  const int order = KnownPages::Order(offer.depth, offer.rank);
  if (!offer.by_id && known_.Has(known, order)) return nothing_new;
  if (const Status begun = Begin(); !begun.ok()) return begun;
  Result<OfferedPage> offered = OfferKnown(offer, key);
  if (offered.ok() && offered.value().page == 0) offered = AddPage(offer, key);
  if (offered.ok()) known_.Add(known, order);
  return offered;
}

KnownPage Collection::ReadKnown(const Statement& row) {
  KnownPage known;
  known.page = row.Int(0);
  known.host = row.Int(1);
  known.url = row.Text(2);
  known.depth = static_cast<int>(row.Int(3));
  known.state = row.Text(4);
  known.reason = row.Text(5);
  known.may_be_private = row.Int(6) != 0;
  known.moved_to = row.Int(7);
  known.read_before = !row.IsNull(8);
  known.erased = row.Int(10) == 0;
  return known;
}

Result<bool> Collection::FindRow(std::int64_t key, std::string_view page_key) {
  Statement& row = statements_->find_page;
  row.Bind(key);
  for (;;) {
    const Result<bool> found = row.Step();
    if (!found.ok() || !found.value()) return found;
    if (KeyOfUrl(row.Text(2)) == page_key) return true;
  }
}

Result<KnownPage> Collection::FindPage(const Url& url) {
  const Result<bool> found = FindRow(HashOf(url.PageKey()), url.PageKey());
  if (!found.ok()) return found.status();
  KnownPage known = found.value() ? ReadKnown(statements_->find_page) : KnownPage{};
  statements_->find_page.Reset();
  return known;
}

Result<KnownPage> Collection::Page(PageId page) {
  const Result<bool> found = statements_->page.Bind(page).Step();
  if (!found.ok()) return found.status();
  KnownPage known = found.value() ? ReadKnown(statements_->page) : KnownPage{};
  statements_->page.Reset();
  return known;
}

Result<KnownPage> Collection::LastOfRedirects(PageId page, PageId circle) {
  constexpr int kMost = 100;  // a longer way is as good as a circle
  for (int i = 0; i < kMost && page != circle; ++i) {
    Result<KnownPage> known = Page(page);
    if (!known.ok() || !known.value().Is(PageState::kMoved)) return known;
    page = known.value().moved_to;
  }
  return KnownPage{};
}

namespace {

// Whether a page that was refused is to be visited, now that it is offered without anything against it.
bool IsLifted(const PageOffer& offer, std::string_view reason) {
  if (reason == kRefusedPrivate) return offer.may_be_private;
  return offer.is_start || reason == kRefusedDepth || reason == kRefusedScope;
}

}  // namespace

// Gives page 0 where the collection does not hold the page.
Result<OfferedPage> Collection::OfferKnown(const PageOffer& offer, std::int64_t key) {
  Statement& row = statements_->find_page;
  const Result<bool> found = FindRow(key, offer.url.PageKey());
  if (!found.ok()) return found.status();
  OfferedPage known;
  known.key = key;
  if (!found.value()) return known;
  known.page = row.Int(0);
  known.host = row.Int(1);
  const int depth = static_cast<int>(row.Int(3));
  const std::string_view state = row.Text(4);
  const bool waits = state == NameOf(PageState::kWaiting);
  const bool visited = state == NameOf(PageState::kRead) || state == NameOf(PageState::kMoved);
  const bool archived = state == NameOf(PageState::kRead) && row.Text(5) == kReadInArchive;
  const bool lifted = archived || (state == NameOf(PageState::kRefused) && IsLifted(offer, row.Text(5)));
  const bool was_private = row.Int(6) != 0;
  const int rank = static_cast<int>(row.Int(9));
  row.Reset();
  const bool nearer = offer.depth < depth;
  if (offer.refused.empty() && (waits ? nearer : lifted)) {
    known.queued = true;
    if (!waits) ++waiting_;
    const Status queued = statements_->queue_page
                              .Bind(std::min(offer.depth, depth), std::min(offer.rank, rank), offer.hops,
                                    was_private || offer.may_be_private, offer.parent, known.page)
                              .Run();
    if (!queued.ok()) return queued;
    return known;
  }
  known.nearer = nearer && visited;
  if (waits && offer.depth == depth && offer.rank < rank) {
    if (const Status raised = statements_->raise_page.Bind(offer.rank, known.page).Run(); !raised.ok()) return raised;
  }
  if (nearer) {
    const Status deepened = statements_->deepen_page.Bind(offer.depth, offer.parent, known.page).Run();
    if (!deepened.ok()) return deepened;
  }
  if (offer.may_be_private && !was_private) {
    if (const Status raised = statements_->make_private.Bind(known.page).Run(); !raised.ok()) return raised;
  }
  return known;
}

Result<OfferedPage> Collection::AddPage(const PageOffer& offer, std::int64_t key) {
  const Result<HostId> host = HostOf(offer.url, offer.site);
  if (!host.ok()) return host.status();
  OfferedPage added;
  added.key = key;
  added.host = host.value();
  added.queued = offer.refused.empty();
  const auto reason = added.queued ? std::optional<std::string_view>() : offer.refused;
  const Status inserted =
      statements_->add_page
          .Bind(key, added.host, offer.url.href(), offer.parent, offer.depth, offer.rank, offer.hops,
                offer.may_be_private, NameOf(added.queued ? PageState::kWaiting : PageState::kRefused), reason)
          .Run();
  if (!inserted.ok()) return inserted;
  added.page = database_->LastRowId();
  if (added.queued) ++waiting_;
  return added;
}

Result<std::optional<WaitingPage>> Collection::Next(HostId host) {
  Statement& row = statements_->next_page;
  const Result<bool> found = row.Bind(host).Step();
  if (!found.ok()) return found.status();
  if (!found.value()) return std::optional<WaitingPage>();
  WaitingPage page;
  page.page = row.Int(0);
  page.url = row.Text(1);
  page.depth = static_cast<int>(row.Int(2));
  page.hops = static_cast<int>(row.Int(3));
  page.etag = row.Text(4);
  page.modified = row.Text(5);
  page.read_before = !row.IsNull(6);
  page.may_be_private = row.Int(7) != 0;
  row.Reset();
  return std::optional<WaitingPage>(std::move(page));
}

Result<HostId> Collection::Readdress(PageId page, const Url& url, std::string_view site, int hops) {
  if (const Status begun = Begin(); !begun.ok()) return begun;
  const Result<HostId> host = HostOf(url, site);
  if (!host.ok()) return host;
  const Status readdressed = statements_->readdress_page.Bind(url.href(), host.value(), hops, page).Run();
  if (!readdressed.ok()) return readdressed;
  return host;
}

Result<std::vector<std::size_t>> Collection::End(HostId host, PageId page, const PageEnd& end,
                                                 const std::vector<SeenAddress>& addresses, std::int64_t now) {
  if (const Status begun = Begin(); !begun.ok()) return begun;
  if (end.state == PageState::kRead) {
    const Status ended =
        statements_->end_page
            .Bind(NameOf(end.state), OrNull(end.reason), OrNull(end.rule), end.line, end.status, OrNull(end.type),
                  OrNull(end.title), now, static_cast<std::int64_t>(end.bytes), end.body_hash, end.moved_to,
                  static_cast<std::int64_t>(end.protected_count), static_cast<std::int64_t>(end.filtered_count),
                  OrNull(end.etag), OrNull(end.modified), page)
            .Run();
    if (!ended.ok()) return ended;
    if (const Status counted = statements_->host_has_read.Bind(host).Run(); !counted.ok()) return counted;
  } else {
    const Status ended = statements_->end_unread
                             .Bind(NameOf(end.state), OrNull(end.reason), OrNull(end.rule), end.line, end.status,
                                   OrNull(end.type), now, static_cast<std::int64_t>(end.bytes), end.moved_to, page)
                             .Run();
    if (!ended.ok()) return ended;
  }
  --waiting_;
  if (LosesAddresses(end)) {
    if (const Status gone = statements_->sightings_gone.Bind(page).Run(); !gone.ok()) return gone;
    const Status forgotten = end.state == PageState::kRead ? Status::Ok() : statements_->forget_body.Bind(page).Run();
    if (!forgotten.ok()) return forgotten;
  }
  return AddSightings(page, addresses, now, statements_->add_sighting);
}

Result<std::vector<std::size_t>> Collection::AddSightings(PageId page, const std::vector<SeenAddress>& addresses,
                                                          std::int64_t now, Statement& add) {
  std::vector<std::size_t> fresh;
  for (std::size_t i = 0; i < addresses.size(); ++i) {
    const SeenAddress& seen = addresses[i];
    if (const Status added = statements_->add_address.Bind(seen.address, now).Run(); !added.ok()) return added;
    std::int64_t id = database_->LastRowId();
    if (database_->Changes() == 1) {
      fresh.push_back(i);
      ++addresses_;
    } else {
      const Result<bool> row = statements_->find_address.Bind(seen.address).Step();
      if (!row.ok()) return row.status();
      id = statements_->find_address.Int(0);
      const bool earlier = now < statements_->find_address.Int(1);
      statements_->find_address.Reset();
      const Status seen_earlier = earlier ? statements_->seen_earlier.Bind(now, id).Run() : Status::Ok();
      if (!seen_earlier.ok()) return seen_earlier;
    }
    const Status sighted = add.Bind(id, page, PlaceName(seen.place), seen.written, now, now).Run();
    if (!sighted.ok()) return sighted;
  }
  return fresh;
}

Result<std::vector<std::size_t>> Collection::AddArchived(const ArchivedPage& page,
                                                         const std::vector<SeenAddress>& addresses) {
  if (const Status begun = Begin(); !begun.ok()) return begun;
  const Result<PageId> id = ArchivedPageId(page);
  if (!id.ok()) return id.status();
  return AddSightings(id.value(), addresses, page.seen, statements_->add_archived_sighting);
}

// The page in the collection, put in where it is new.
Result<PageId> Collection::ArchivedPageId(const ArchivedPage& page) {
  const std::string_view identity = page.parsed != nullptr ? page.parsed->PageKey() : page.url;
  const std::int64_t key = HashOf(identity);
  const Result<bool> found = FindRow(key, page.parsed != nullptr ? identity : KeyOfUrl(page.url));
  if (!found.ok()) return found.status();
  if (found.value()) {
    const PageId known = statements_->find_page.Int(0);
    statements_->find_page.Reset();
    return known;
  }
  const Result<HostId> host = HostOfOrigin(page.parsed != nullptr ? page.parsed->Origin() : "file:", page.site);
  if (!host.ok()) return host.status();
  const Status added = statements_->add_archived_page
                           .Bind(key, host.value(), page.url, page.status == 0 ? std::optional<int>() : page.status,
                                 page.type, page.title, page.seen, static_cast<std::int64_t>(page.filtered_count))
                           .Run();
  if (!added.ok()) return added;
  return database_->LastRowId();
}

Status Collection::EndUnchanged(HostId host, PageId page, std::int64_t now) {
  if (const Status begun = Begin(); !begun.ok()) return begun;
  if (const Status ended = statements_->page_unchanged.Bind(now, page).Run(); !ended.ok()) return ended;
  --waiting_;
  if (const Status counted = statements_->host_has_read.Bind(host).Run(); !counted.ok()) return counted;
  return statements_->sightings_seen.Bind(now, page).Run();
}

Result<bool> Collection::BodySeen(HostId host, PageId page, std::int64_t body_hash) {
  const Result<bool> row = statements_->body_seen.Bind(host, body_hash, page).Step();
  statements_->body_seen.Reset();
  return row;
}

}  // namespace quenlar
