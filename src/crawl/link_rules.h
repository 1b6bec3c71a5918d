// Which links of a page a crawl takes up: scope, depth, traps.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>

#include "crawl/crawl_options.h"
#include "page/url.h"

namespace quenlar {

// The site of a URL: the registrable domain of its host, or the host where it has none (an IP address, a public
// suffix).
[[nodiscard]] std::string_view SiteOf(const Url& url);

// Host and port as page identities spell them, without the scheme: "example.org", "example.org:8080".
[[nodiscard]] std::string_view AuthorityOf(const Url& url);

// The URL as a page that can be visited: without its user name and password, which are never sent and make no other
// page. Empty where it is too long, or names port 0, at which nobody listens.
[[nodiscard]] std::optional<Url> AsPage(std::optional<Url> url, const Idna& idna);

// True for a path in which a segment comes more than three times: such paths are mostly made by a link that is relative
// and wrong, and have no end.
[[nodiscard]] bool RepeatsSegments(std::string_view path);

// Longer URLs are refused, as servers and proxies do.
inline constexpr std::size_t kLongestPageUrl = 2083;

// The hosts or sites that starts have opened.
class ScopeRule {
 public:
  explicit ScopeRule(CrawlScope scope) : scope_(scope) {}
  // A start lies here. True: none did before.
  bool Open(std::string_view authority, std::string_view site);
  // One start that lay here does not any more.
  void Close(std::string_view authority, std::string_view site);
  [[nodiscard]] bool Contains(const Url& url) const;

 private:
  CrawlScope scope_;
  std::unordered_map<std::string, std::size_t> open_;  // with the number of starts
};

}  // namespace quenlar
