// The part of Crawler that deals with site addresses as starts.
#include <algorithm>
#include <utility>

#include "base/ascii.h"
#include "crawl/contact_words.h"
#include "crawl/crawler.h"

namespace quenlar {
namespace {

constexpr const char* kSite = "site";
constexpr const char* kSuppressedStart = ": it names an address of the suppression list, and is not visited";

// The scheme that is typed, in lower case: what stands before "://" at the beginning. Empty without one.
std::string SchemeOf(std::string_view text) {
  const std::size_t end = text.find("://");
  const std::string_view scheme = text.substr(0, end == text.npos ? 0 : end);
  const bool is_scheme = std::all_of(scheme.begin(), scheme.end(), [](char c) {
    return IsLetter(c) || IsDigit(c) || c == '+' || c == '-' || c == '.';
  });
  return is_scheme ? Lower(scheme) : std::string();
}

// What a person means by a site's address: without a scheme it is asked for by https first.
std::optional<Url> TypedUrl(const std::string& text, const Idna& idna) {
  return AsPage(ParseUrl(SchemeOf(text).empty() ? "https://" + text : text, nullptr, idna), idna);
}

template <typename Map>
void EraseOne(Map& map, typename Map::key_type key, typename Map::mapped_type value) {
  const auto [begin, end] = map.equal_range(key);
  for (auto it = begin; it != end; ++it) {
    if (it->second != value) continue;
    map.erase(it);
    return;
  }
}

}  // namespace

bool IsSiteText(std::string_view text) {
  if (!SchemeOf(text).empty()) return true;
  return text.find('.') != std::string_view::npos && text.find_first_of(" \t") == std::string_view::npos;
}

void Crawler::AddStarts(const std::vector<std::string>& texts) {
  for (const std::string& text : texts) {
    if (NamesSuppressed(text)) {
      start_problems_.push_back(text + kSuppressedStart);
      continue;
    }
    IsSiteText(text) ? AddSite(text) : AddKeyword(text);
    if (!failure_.ok()) return;
  }
  if (!options_.links) LoadStarts();
}

void Crawler::AddSite(const std::string& text) {
  const auto url = TypedUrl(text, world_.idna);
  if (!url) {
    const std::string scheme = SchemeOf(text);
    const bool other = !scheme.empty() && scheme != "http" && scheme != "https";
    start_problems_.push_back(text + (other ? ": only http and https can be visited" : ": this is not a web address"));
    return;
  }
  if (NamesSuppressed(url->href())) return start_problems_.push_back(text + kSuppressedStart);
  const auto start = collection_.AddStart(text, kSite, 0);
  if (Failed(start) || places_.contains(start.value().id)) return;
  given_[start.value().id].text = text;
  if (start.value().page == 0) return PlaceSite(start.value(), *url, true);
  // Where it lies by now. What refused it in an earlier run is judged anew, and told anew.
  const auto page = collection_.Page(start.value().page);
  if (Failed(page)) return;
  if (page.value().erased) {
    LoadStart(start.value());
    return OpenScope(start.value().host, start.value().site);
  }
  const auto known = ParseUrl(page.value().url, nullptr, world_.idna);
  PlaceSite(start.value(), known ? *known : *url, true);
}

void Crawler::PlaceSite(const StartRow& start, const Url& url, bool typed) {
  const std::string authority(AuthorityOf(url)), site(SiteOf(url));
  PageOffer offer{url, site};
  offer.rank = kPromisesContacts;
  offer.may_be_private = typed;
  offer.by_id = true;
  offer.is_start = true;
  const auto offered = Offer(offer);
  if (!offered || Failed(collection_.PlaceStart(start.id, offered->page, authority, site))) return;
  StartRow placed = start;
  placed.page = offered->page;
  placed.host = authority;
  placed.site = site;
  LoadStart(placed);
  OpenScope(authority, site);
}

// Opens the link's site, but is not a start: a redirect does not move it to another site.
void Crawler::AddLink(const HandedLink& link) {
  const auto url = AsPage(ParseUrl(link.url, nullptr, world_.idna), world_.idna);
  if (!url) {
    start_problems_.push_back(link.url + ": this is not a web address");
    return;
  }
  if (NamesSuppressed(url->href())) return;
  PageOffer offer{*url, SiteOf(*url)};
  offer.depth = link.depth;
  offer.rank = link.depth == 0 ? kPromisesContacts : ContactRankOfPath(url->path());
  offer.may_be_private = link.may_be_private;
  offer.by_id = true;
  if (link.depth > options_.depth) offer.refused = kRefusedDepth;
  const auto offered = Offer(offer);
  if (!offered) return;
  OpenScope(AuthorityOf(*url), SiteOf(*url));
  const auto page = collection_.Page(offered->page);
  if (!Failed(page) && link.https_first) AllowFallback(page.value(), *url);
}

// Starts of earlier runs, and results of earlier searches, open their scopes too.
void Crawler::LoadStarts() {
  const auto all = collection_.Starts();
  if (Failed(all)) return;
  for (const StartRow& start : all.value()) {
    if (start.page == 0 || places_.contains(start.id)) continue;
    LoadStart(start);
    scope_.Open(start.host, start.site);
  }
}

// A start that has moved is asked for where it was typed too when everything is visited anew: it may have moved on.
void Crawler::LoadStart(const StartRow& start) {
  if (!failure_.ok() || !places_.emplace(start.id, StartPlace{start.page, start.host, start.site}).second) return;
  starts_on_.emplace(start.page, start.id);
  const auto page = collection_.Page(start.page);
  const auto typed = TypedUrl(start.text, world_.idna);
  if (Failed(page) || !typed) return;
  if (const auto given = given_.find(start.id); given != given_.end()) given->second.host = page.value().host;
  const bool scheme_typed = !SchemeOf(start.text).empty();
  std::string_view url = page.value().url;
  url.remove_prefix(std::min(url.find("//") + 2, url.size()));
  if (url == typed->PageKey()) {
    if (!scheme_typed) AllowFallback(page.value(), *typed);
    return;
  }
  if (!pass_.later) return;
  const auto first = collection_.FindPage(*typed);
  if (Failed(first) || first.value().page == 0) return;
  starts_on_.emplace(first.value().page, start.id);
  if (!scheme_typed) AllowFallback(first.value(), *typed);
}

// A page that was never read is asked for by https once more, also where only http answered before.
void Crawler::AllowFallback(const KnownPage& page, const Url& typed) {
  if (!page.Is(PageState::kWaiting)) return;
  HostId host = page.host;
  if (!page.read_before && page.url != typed.href()) {
    const auto moved = collection_.Readdress(page.page, typed, SiteOf(typed), 0);
    if (Failed(moved)) return;
    host = moved.value();
    QueueHost(host, page.depth);
  }
  if (host != page.host || page.url == typed.href()) may_fall_back_.emplace(host, page.page);
}

void Crawler::OpenScope(std::string_view authority, std::string_view site) {
  if (!failure_.ok() || !scope_.Open(authority, site)) return;
  // Links that led here before were refused.
  const auto hosts =
      options_.scope == CrawlScope::kHost ? collection_.HostsOfAuthority(authority) : collection_.HostsOfSite(site);
  if (Failed(hosts)) return;
  for (const HostId host : hosts.value()) QueueRefusedOf(host, kRefusedScope);
}

// A start that redirects moves: where it ends, its host and site are, and where it was they are not any more.
void Crawler::MoveStarts(PageId from, PageId to, const Url& url) {
  std::vector<StartId> starts;
  const auto [begin, end] = starts_on_.equal_range(from);
  for (auto it = begin; it != end; ++it) starts.push_back(it->second);
  for (const StartId start : starts) {
    StartPlace& place = places_[start];
    if (place.page == to) continue;
    EraseOne(starts_on_, place.page, start);
    if (place.page != from) EraseOne(starts_on_, from, start);
    starts_on_.emplace(to, start);
    const StartPlace before = std::exchange(place, {to, std::string(AuthorityOf(url)), std::string(SiteOf(url))});
    if (Failed(collection_.PlaceStart(start, to, place.authority, place.site))) return;
    OpenScope(place.authority, place.site);
    scope_.Close(before.authority, before.site);
    const auto given = given_.find(start);
    if (given == given_.end()) continue;
    const auto page = collection_.Page(to);
    if (Failed(page)) return;
    given->second.host = page.value().host;
  }
}

// A person who names a site wants to know why nothing comes of it.
void Crawler::TellOfRefusedStart(const HostVisit& visit, const PageEnd& end) {
  if (!IsStart(visit.page->page)) return;
  world_.view.OnNotice("The robots.txt of " + visit.row.origin + " does not allow " + visit.page->url + " (line " +
                       std::to_string(end.line) + ": " + end.rule +
                       "); it is visited all the same with --robots ignore, or when the web settings say so");
}

// Starts without a scheme are asked for by https first, then by http when nothing answers there.
void Crawler::FallBackToHttp(HostVisit& visit, const WebAnswer& answer) {
  const bool nothing_answers = answer.failure == WebFailure::kNoConnection || answer.failure == WebFailure::kNoTls ||
                               answer.failure == WebFailure::kTimeout || answer.failure == WebFailure::kProxy;
  if (!nothing_answers || visit.memory.answered) return;
  const auto [begin, end] = may_fall_back_.equal_range(visit.row.id);
  for (auto it = begin; it != end; ++it) {
    const auto page = collection_.Page(it->second);
    if (Failed(page)) return;
    if (!page.value().Is(PageState::kWaiting) || page.value().host != visit.row.id) continue;
    const auto url = ParseUrl("http" + page.value().url.substr(page.value().url.find("://")), nullptr, world_.idna);
    if (!url) continue;
    const auto host = collection_.Readdress(it->second, *url, SiteOf(*url), 0);
    if (Failed(host)) return;
    StartsAreAskedOn(it->second, host.value());
    QueueHost(host.value(), page.value().depth);
  }
  may_fall_back_.erase(visit.row.id);
}

void Crawler::StartsAreAskedOn(PageId page, HostId host) {
  const auto [begin, end] = starts_on_.equal_range(page);
  for (auto start = begin; start != end; ++start) {
    if (const auto given = given_.find(start->second); given != given_.end()) given->second.host = host;
  }
}

}  // namespace quenlar
