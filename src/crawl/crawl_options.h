// What a person asks of a crawl.
#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace quenlar {

// What links may lead to.
enum class CrawlScope {
  kHost,      // the start's host alone, under both schemes
  kSite,      // the start's site
  kAnywhere,  // any site
};

// A page that another collection has found a link to, or a site that a person named to one who divides a crawl.
struct HandedLink {
  std::string url;              // absolute
  int depth = 0;                // clicks from that collection's start
  bool may_be_private = false;  // as PageOffer has it
  bool https_first = false;     // http is tried where nothing answers under https
};

struct CrawlOptions {
  CrawlScope scope = CrawlScope::kSite;
  int depth = 5;  // clicks from a start; 0 is the start page alone
  // Budgets; empty: none. `pages` and `minutes` are those of one run, the others those of the whole collection.
  std::optional<std::uint64_t> pages = {};
  std::uint64_t pages_per_host = 1000;
  std::optional<double> minutes = {};
  std::optional<std::uint64_t> addresses = {};
  std::size_t hosts = 64;  // visited at the same time
  // Between two pages of a host. 0 is for one's own server: then the time of the last answer makes no pause either.
  std::chrono::milliseconds delay{1000};
  bool obey_robots = true;
  std::string contact = {};         // of the person who collects, for the User-Agent; empty: none
  std::string search_service = {};  // an absolute URL; empty: none
  std::string language = "en";      // of searches
  bool decode_protected = false;    // also list addresses that are hidden from programs
  bool assume_online = false;       // do not ask the system whether there is a network
  bool again = false;               // visit everything again
  bool keep_wire = false;           // WebRequest::keep_wire of pages and robots.txt; not of searches
  // The filters, and a digest of the suppression list: where this text changes, a page that has not changed is read
  // anew all the same.
  std::string filters = {};
  // The run visits these and what they lead to on their own sites, and nothing else: what waits on other sites goes on
  // waiting.
  std::optional<std::vector<HandedLink>> links = {};
};

// The product token of robots.txt and of the User-Agent.
inline constexpr const char* kCrawlAgent = "Quenlar";

}  // namespace quenlar
