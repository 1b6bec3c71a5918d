#include "crawl/link_rules.h"

#include <algorithm>
#include <vector>

#include "page/site.h"

namespace quenlar {

std::string_view SiteOf(const Url& url) {
  const std::string_view site = RegistrableDomain(url.host());
  return site.empty() ? url.host() : site;
}

std::string_view AuthorityOf(const Url& url) {
  const std::string_view key = url.PageKey();
  return key.substr(0, key.find('/'));
}

std::optional<Url> AsPage(std::optional<Url> url, const Idna& idna) {
  if (!url || url->port() == 0) return std::nullopt;
  const std::string plain = std::string(url->scheme()).append("://").append(url->PageKey());
  if (plain.size() > kLongestPageUrl) return std::nullopt;
  return plain.size() == url->href().size() ? url : ParseUrl(plain, nullptr, idna);
}

bool RepeatsSegments(std::string_view path) {
  constexpr std::size_t kMost = 3;
  if (static_cast<std::size_t>(std::count(path.begin(), path.end(), '/')) <= kMost) return false;
  std::vector<std::string_view> segments;
  while (!path.empty()) {
    const std::size_t end = std::min(path.find('/'), path.size());
    if (end > 0) segments.push_back(path.substr(0, end));
    path.remove_prefix(std::min(end + 1, path.size()));
  }
  std::sort(segments.begin(), segments.end());
  for (std::size_t i = kMost; i < segments.size(); ++i) {
    if (segments[i] == segments[i - kMost]) return true;
  }
  return false;
}

bool ScopeRule::Open(std::string_view authority, std::string_view site) {
  if (scope_ == CrawlScope::kAnywhere) return false;
  return ++open_[std::string(scope_ == CrawlScope::kHost ? authority : site)] == 1;
}

void ScopeRule::Close(std::string_view authority, std::string_view site) {
  const auto found = open_.find(std::string(scope_ == CrawlScope::kHost ? authority : site));
  if (found != open_.end() && --found->second == 0) open_.erase(found);
}

bool ScopeRule::Contains(const Url& url) const {
  if (scope_ == CrawlScope::kAnywhere) return true;
  return open_.contains(std::string(scope_ == CrawlScope::kHost ? AuthorityOf(url) : SiteOf(url)));
}

}  // namespace quenlar
