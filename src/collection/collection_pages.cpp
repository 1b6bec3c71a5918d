// The part of Collection that holds hosts, pages and sightings.
#include <utility>

#include "collection/collection.h"
#include "collection/collection_sql.h"
#include "collection/statements.h"

namespace quenlar {
namespace {

std::optional<std::string_view> OrNull(const std::string& text) {
  return text.empty() ? std::optional<std::string_view>() : std::string_view(text);
}

// A page that is not there any more takes its addresses with it; one that only failed for now does not.
bool LosesAddresses(const PageEnd& end) {
  return end.state == PageState::kRead || end.state == PageState::kMoved || end.status == 404 || end.status == 410;
}

}  // namespace

Result<HostId> Collection::HostOf(const Url& url, std::string_view site) {
  constexpr std::size_t kMostRemembered = 4096;
  std::string origin = url.Origin();
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

Result<HostId> Collection::HostOfPage(PageId page) {
  const Result<bool> row = statements_->host_of_page.Bind(page).Step();
  if (!row.ok()) return row.status();
  const HostId host = row.value() ? statements_->host_of_page.Int(0) : 0;
  statements_->host_of_page.Reset();
  return host;
}

Status Collection::SaveHostState(HostId host, std::string_view state, std::string_view reason) {
  if (const Status begun = Begin(); !begun.ok()) return begun;
  return statements_->save_host_state.Bind(state, reason, host).Run();
}

Status Collection::SaveRobots(HostId host, std::int64_t now, int status, std::string_view rules) {
  if (const Status begun = Begin(); !begun.ok()) return begun;
  return statements_->save_robots.Bind(rules, status, now, host).Run();
}

Status Collection::HostsWaiting(const std::function<void(HostId host, int depth)>& each) {
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
  if (!offer.by_id && known_.Has(key, offer.depth)) return OfferedPage{};
  if (const Status begun = Begin(); !begun.ok()) return begun;
  Result<OfferedPage> offered = OfferKnown(offer, key);
  if (offered.ok() && offered.value().page == 0) offered = AddPage(offer, key);
  if (offered.ok()) known_.Add(key, offer.depth);
  return offered;
}

// Gives page 0 where the collection does not hold the page.
Result<OfferedPage> Collection::OfferKnown(const PageOffer& offer, std::int64_t key) {
  Statement& row = statements_->find_page;
  row.Bind(key);
  for (;;) {
    const Result<bool> found = row.Step();
    if (!found.ok()) return found.status();
    if (!found.value()) return OfferedPage{};
    const std::string_view url = row.Text(2);
    if (url.substr(url.find("//") + 2) == offer.url.PageKey()) break;
  }
  OfferedPage known;
  known.page = row.Int(0);
  known.host = row.Int(1);
  const int depth = static_cast<int>(row.Int(3));
  const bool waits = row.Text(4) == NameOf(PageState::kWaiting);
  const bool may_be_lifted =
      row.Text(4) == NameOf(PageState::kRefused) && (row.Text(5) == kRefusedDepth || row.Text(5) == kRefusedScope ||
                                                     (row.Text(5) == kRefusedPrivate && offer.may_be_private));
  const bool was_private = row.Int(6) != 0;
  row.Reset();
  const bool nearer = offer.depth < depth;
  if (offer.refused.empty() && (waits ? nearer : may_be_lifted)) {
    known.queued = true;
    if (!waits) ++waiting_;
    const Status queued =
        statements_->queue_page
            .Bind(offer.depth, offer.rank, offer.hops, was_private || offer.may_be_private, offer.parent, known.page)
            .Run();
    if (!queued.ok()) return queued;
  } else if (nearer) {
    const Status deepened = statements_->deepen_page.Bind(offer.depth, offer.parent, known.page).Run();
    if (!deepened.ok()) return deepened;
  }
  return known;
}

Result<OfferedPage> Collection::AddPage(const PageOffer& offer, std::int64_t key) {
  const Result<HostId> host = HostOf(offer.url, offer.site);
  if (!host.ok()) return host.status();
  OfferedPage added;
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
  const Status ended =
      statements_->end_page
          .Bind(NameOf(end.state), OrNull(end.reason), OrNull(end.rule), end.line, end.status, OrNull(end.type),
                OrNull(end.title), now, static_cast<std::int64_t>(end.bytes), end.body_hash, end.moved_to,
                static_cast<std::int64_t>(end.protected_count), static_cast<std::int64_t>(end.filtered_count),
                OrNull(end.etag), OrNull(end.modified), page)
          .Run();
  if (!ended.ok()) return ended;
  --waiting_;
  if (end.state == PageState::kRead) {
    if (const Status counted = statements_->host_has_read.Bind(host).Run(); !counted.ok()) return counted;
  }
  if (LosesAddresses(end)) {
    if (const Status gone = statements_->sightings_gone.Bind(page).Run(); !gone.ok()) return gone;
  }
  return AddSightings(page, addresses, now);
}

Result<std::vector<std::size_t>> Collection::AddSightings(PageId page, const std::vector<SeenAddress>& addresses,
                                                          std::int64_t now) {
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
      statements_->find_address.Reset();
    }
    const Status sighted =
        statements_->add_sighting.Bind(id, page, PlaceName(seen.place), seen.written, now, now).Run();
    if (!sighted.ok()) return sighted;
  }
  return fresh;
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

Status Collection::QueueRefused(std::string_view reason, std::string_view option) {
  const std::string fact = "option " + std::string(reason);
  const Result<std::string> before = Fact(fact);
  if (!before.ok()) return before.status();
  if (before.value() == option) return Status::Ok();
  if (const Status set = SetFact(fact, option); !set.ok()) return set;
  if (before.value().empty()) return Status::Ok();  // the first run
  if (const Status queued = statements_->queue_refused.Bind(reason).Run(); !queued.ok()) return queued;
  waiting_ += database_->Changes();
  known_.Clear();
  return Status::Ok();
}

Status Collection::QueueAgain() {
  if (const Status begun = Begin(); !begun.ok()) return begun;
  if (const Status queued = database_->Execute(sql::kQueueAgain); !queued.ok()) return queued;
  waiting_ += database_->Changes();
  known_.Clear();
  if (const Status forgotten = database_->Execute(sql::kForgetReads); !forgotten.ok()) return forgotten;
  return database_->Execute(sql::kForgetSearches);
}

}  // namespace quenlar
