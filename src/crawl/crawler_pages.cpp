// The part of Crawler that deals with the answer to a page's request.
#include <algorithm>
#include <utility>

#include "base/ascii.h"
#include "crawl/contact_words.h"
#include "crawl/crawler.h"
#include "page/page_reader.h"
#include "platform/ip_address.h"

namespace quenlar {
namespace {

constexpr int kMostHops = 5;
constexpr std::string_view kNoPageType = "type";  // an answer that is not a page has not failed

// The first field that says something.
std::string_view ContentType(const WebHead& head) {
  for (const auto& [name, value] : head.fields) {
    if (!value.empty() && EqualsIgnoreCase(name, "Content-Type")) return value;
  }
  return {};
}

// The media type without parameters, in lower case; empty where the answer names none.
std::string MediaType(const WebHead& head) {
  std::string_view type = ContentType(head);
  type = type.substr(0, type.find(';'));
  while (!type.empty() && (type.back() == ' ' || type.back() == '\t')) type.remove_suffix(1);
  return Lower(type);
}

std::string FieldOf(const WebHead& head, std::string_view name) {
  const std::string* const value = head.Find(name);
  return value ? *value : std::string();
}

std::vector<std::string> RobotsHeaders(const WebHead& head) {
  std::vector<std::string> values;
  for (const auto& [name, value] : head.fields) {
    if (EqualsIgnoreCase(name, "X-Robots-Tag")) values.push_back(value);
  }
  return values;
}

}  // namespace

bool IsPageType(const WebHead& head) {
  const std::string type = MediaType(head);
  return type.empty() || type == "text/html" || type == "application/xhtml+xml" || type == "text/plain";
}

void Crawler::OnPageAnswer(HostVisit& visit, const WebAnswer& answer) {
  const int status = answer.head.status;
  PageEnd end;
  end.state = PageState::kFailed;
  end.reason = "status";
  end.status = status;
  end.bytes = answer.bytes_received;
  if (answer.failure != WebFailure::kNone) return OnLostPage(visit, answer, std::move(end));
  if (status == 429 || status == 503) return OnBusyHost(visit, answer, std::move(end));
  SetReason(visit, "");
  if (status >= 500) {
    visit.memory.pace.OnFailure(world_.loop.Now(), answer.duration);
    EndPage(visit, end);
    if (!CountFailure(visit, "status " + std::to_string(status))) Continue(visit);
    return;
  }
  visit.memory.pace.OnAnswer(world_.loop.Now(), answer.duration);
  visit.memory.failures = 0;
  NoteProgress();
  // It may have been found nearer while it was under way.
  const auto known = collection_.Page(visit.page->page);
  if (Failed(known)) return;
  visit.page->depth = known.value().depth;
  if (status == 304 && visit.page->read_before) {
    OnUnchanged(visit);
  } else if (status >= 300 && status <= 399) {
    OnRedirect(visit, answer, std::move(end));
  } else if (status >= 200 && status <= 299) {
    OnPage(visit, answer, std::move(end));
  } else {
    EndPage(visit, end);
  }
  Continue(visit);
}

// No answer, or none that can be used.
void Crawler::OnLostPage(HostVisit& visit, const WebAnswer& answer, PageEnd end) {
  end.reason = answer.message;
  // Without a network no host is to blame: the page is left for the next run.
  if (answer.failure != WebFailure::kPrivateAddress && IsOffLine()) {
    offline_ = true;
    return;
  }
  switch (answer.failure) {
    case WebFailure::kPrivateAddress:
      end.state = PageState::kRefused;
      end.reason = kRefusedPrivate;
      ++figures_.refused;
      EndPage(visit, end);
      return Continue(visit);
    case WebFailure::kNoName:
    case WebFailure::kNoConnection:
    case WebFailure::kNoTls:
    case WebFailure::kCertificate:
    case WebFailure::kProxy:
    case WebFailure::kTimeout:
    case WebFailure::kBroken:
      if (!visit.memory.answered) return OnSilence(visit, answer);
      break;
    case WebFailure::kBadUrl:
    case WebFailure::kNoMemory:
    case WebFailure::kNone:
      EndPage(visit, end);
      return Continue(visit);
  }
  visit.memory.pace.OnFailure(world_.loop.Now(), answer.duration);
  EndPage(visit, end);
  if (!CountFailure(visit, answer.message)) Continue(visit);
}

// The page is asked for again first when the host may be asked again. It counts as failed when the host is given up.
void Crawler::OnBusyHost(HostVisit& visit, const WebAnswer& answer, PageEnd end) {
  visit.memory.pace.OnBusy(world_.loop.Now(), answer.duration, RetryAfterOf(answer));
  SetReason(visit, "it answers with status " + std::to_string(answer.head.status));
  SaveWait(visit.row.id, visit.memory.pace);
  if (visit.memory.failures + 1 == kMostFailures) EndPage(visit, end);
  if (!CountFailure(visit, "status " + std::to_string(answer.head.status))) Continue(visit);
}

void Crawler::OnUnchanged(HostVisit& visit) {
  if (IsStart(visit.page->page)) MoveStarts(visit.page->page, visit.page->page, *visit.url);
  ++figures_.pages;
  Failed(collection_.EndUnchanged(visit.row.id, visit.page->page, world_.clock.UtcSeconds()));
  ++visit.row.read;
}

void Crawler::OnRedirect(HostVisit& visit, const WebAnswer& answer, PageEnd end) {
  const std::string location = FieldOf(answer.head, "Location");
  const auto parsed = location.empty() ? std::nullopt : ParseUrl(location, &*visit.url, world_.idna);
  const auto target = AsPage(parsed, world_.idna);
  const int hops = visit.page->hops + 1;
  end.gone = true;
  if (parsed && !target) {
    end.state = PageState::kRefused;
    end.reason = "address";
    return EndPage(visit, end);
  }
  if (!target || hops > kMostHops) {
    end.reason = target ? "too many redirects" : "redirect without a target";
    return EndPage(visit, end);
  }

  // Nothing of the target is stored.
  if (NamesSuppressed(target->href())) {
    end.state = PageState::kRefused;
    end.reason = kRefusedSuppressed;
    return EndPage(visit, end);
  }

  const PageId page = visit.page->page;
  const bool start_moves = IsStart(page);
  if (target->PageKey() == visit.url->PageKey()) {
    const auto host = collection_.Readdress(page, *target, SiteOf(*target), hops);
    if (Failed(host)) return;
    StartsAreAskedOn(page, host.value());
    QueueHost(host.value(), visit.page->depth);
    return;
  }
  PageOffer offer{*target, SiteOf(*target)};
  offer.depth = visit.page->depth;
  offer.rank = kPromisesContacts;  // a page that was asked for comes before those that were only found
  offer.hops = hops;
  offer.parent = page;
  offer.may_be_private = visit.page->may_be_private && CameFromPrivatePlace(*visit.url, answer);
  offer.by_id = true;
  if (!start_moves && !scope_.Contains(*target)) offer.refused = kRefusedScope;
  if (!start_moves && RepeatsSegments(target->path())) offer.refused = "trap";
  const auto offered = Offer(offer);
  if (!offered) return;
  // The target may have been visited, and have redirected on.
  const auto last = collection_.LastOfRedirects(offered->page, page);
  if (Failed(last)) return;
  if (last.value().page == 0) {
    end.reason = "redirects in a circle";
    return EndPage(visit, end);
  }
  const auto place = ParseUrl(last.value().url, nullptr, world_.idna);
  if (start_moves && place) MoveStarts(page, last.value().page, *place);
  end.state = PageState::kMoved;
  end.reason.clear();
  end.moved_to = offered->page;
  EndPage(visit, end);
}

// Whether the answer came from an address that no public page may lead to.
bool Crawler::CameFromPrivatePlace(const Url& url, const WebAnswer& answer) const {
  const auto address = ParseIpAddress(answer.head.ip.empty() ? url.host() : std::string_view(answer.head.ip));
  return address ? !IsPublicAddress(*address) : IsLoopbackName(url.host());
}

void Crawler::OnPage(HostVisit& visit, const WebAnswer& answer, PageEnd end) {
  end.type = MediaType(answer.head);
  if (!IsPageType(answer.head)) {
    end.reason = kNoPageType;
    end.gone = true;
    return EndPage(visit, end);
  }
  if (IsStart(visit.page->page)) MoveStarts(visit.page->page, visit.page->page, *visit.url);
  const std::string content_type(ContentType(answer.head));
  const std::vector<std::string> robots_headers = RobotsHeaders(answer.head);
  ReadRequest request;
  request.body = answer.body;
  request.url = &*visit.url;
  request.content_type = content_type;
  request.robots_headers = robots_headers;
  request.decode_protected = options_.decode_protected;
  const ReadResult page = ReadPage(request, world_.idna, world_.decoder);

  end.state = PageState::kRead;
  end.reason.clear();
  end.title = page.title.value_or("");
  if (NamesSuppressed(end.title)) end.title.clear();
  end.body_hash = collection_.HashOf(answer.body);
  end.etag = FieldOf(answer.head, "ETag");
  end.modified = FieldOf(answer.head, "Last-Modified");
  std::vector<SeenAddress> addresses;
  if (!options_.obey_robots || !page.robots.noindex()) {
    end.protected_count = page.protected_addresses;
    addresses = KeptAddresses(page, end);
  }
  // A body that another page of the host had: its links lead to the same places once more, as in a trap.
  const auto seen = collection_.BodySeen(visit.row.id, visit.page->page, *end.body_hash);
  if (Failed(seen)) return;
  const bool follow = !seen.value() && !(options_.obey_robots && page.robots.nofollow());
  if (options_.obey_robots && page.robots.noindex()) {
    end.reason = "noindex";
  } else if (!follow) {
    end.reason = seen.value() ? "same body" : "nofollow";
  }
  const bool private_place = visit.page->may_be_private && CameFromPrivatePlace(*visit.url, answer);
  if (follow) OfferLinks(visit, page.links, private_place);
  ++figures_.pages;
  ++visit.row.read;
  figures_.protected_count += end.protected_count;
  EndPage(visit, end, addresses);
}

// What is dropped counts once, in however many places of the page it stands.
std::vector<SeenAddress> Crawler::KeptAddresses(const ReadResult& page, PageEnd& end) {
  std::vector<SeenAddress> kept;
  std::unordered_set<std::string> filtered, suppressed;
  for (const PageAddress& found : page.addresses) {
    if (!world_.filter.Keeps(found.address)) {
      filtered.insert(Lower(found.address));
    } else if (!world_.suppression.Keeps(found.address)) {
      suppressed.insert(Lower(found.address));
    } else {
      kept.push_back({found.address, found.written, found.place});
    }
  }
  end.filtered_count = filtered.size();
  figures_.filtered += filtered.size();
  figures_.suppressed += suppressed.size();
  return kept;
}

AddressTest Crawler::NotSuppressed() {
  return [this](std::string_view address) { return world_.suppression.Keeps(address); };
}

bool Crawler::NamesSuppressed(std::string_view text) { return NextUnwanted(text, NotSuppressed()).has_value(); }

// Takes up the links of a page, and remembers them: should it turn out to be nearer to a start, so are they.
void Crawler::OfferLinks(const HostVisit& visit, const std::vector<PageLink>& links, bool private_place) {
  const int depth = visit.page->depth + 1;
  std::vector<std::int64_t> keys;
  for (const PageLink& link : links) {
    const LinkFollow least = options_.obey_robots ? LinkFollow::kFollowed : LinkFollow::kUnasked;
    if (link.follow < least) continue;
    const auto url = AsPage(ParseUrl(link.url, nullptr, world_.idna), world_.idna);
    if (!url || url->path() == "/robots.txt" || NamesSuppressed(url->href())) continue;
    PageOffer offer{*url, SiteOf(*url)};
    offer.depth = depth;
    offer.rank = std::min(ContactRankOfPath(url->path()), ContactRankOfText(link.text));
    offer.parent = visit.page->page;
    offer.may_be_private = private_place;
    if (RepeatsSegments(url->path())) {
      offer.refused = "trap";
    } else if (!scope_.Contains(*url)) {
      offer.refused = kRefusedScope;
    } else if (depth > options_.depth) {
      offer.refused = kRefusedDepth;
    }
    const auto offered = Offer(offer);
    if (!offered) return;
    keys.push_back(offered->key);
  }
  // A start cannot come nearer.
  if (visit.page->depth > 0) Failed(collection_.SaveLinks(visit.page->page, keys));
}

// Ends the visit of the page at hand.
void Crawler::EndPage(HostVisit& visit, const PageEnd& end, const std::vector<SeenAddress>& addresses) {
  if (!failure_.ok()) return;
  if (end.state == PageState::kFailed && end.reason != kNoPageType) ++figures_.failed;
  const std::int64_t now = world_.clock.UtcSeconds();
  const auto fresh = collection_.End(visit.row.id, visit.page->page, end, addresses, now);
  if (Failed(fresh)) return;
  figures_.fresh += fresh.value().size();
  for (const std::size_t i : fresh.value()) {
    new_rows_.push_back({std::string(addresses[i].address), visit.url->href(), end.title, addresses[i].place, now});
  }
}

void Crawler::GiveRows() {
  committed_ = figures_;
  for (const NewRow& row : std::exchange(new_rows_, {})) {
    world_.view.OnNewAddress({row.address, row.page, row.title, row.place, row.seen});
  }
}

}  // namespace quenlar
