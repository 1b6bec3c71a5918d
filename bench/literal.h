// The same work as the program's own scanners, done by regular-expression engines with the patterns as they are written
// down, or by plain searches: what the program is compared with.
#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>

namespace quenlar::bench {

inline constexpr const char* kTagPattern = "<[^<]*?[a-z0-9._%+-]+@[a-z0-9.-]+\\.[a-z]{2,4}[^<]*?>";
inline constexpr const char* kTextPattern = ">[^<]*?[a-z0-9._%+-]+@[a-z0-9.-]+\\.[a-z]{2,4}[^<]*?<";
inline constexpr const char* kAddressPattern = "\\b[a-z0-9._%+-]+@[a-z0-9.-]+\\.[a-z]{2,4}\\b";
inline constexpr const char* kTitlePattern = "<TITLE>([\\s\\S]*?)</TITLE>";

// One compiled pattern, case-insensitive.
class Pattern {
 public:
  virtual ~Pattern() = default;
  // The first match at or after `from`, as a view into `text`; data() is null when there is none (or the engine gave
  // up).
  [[nodiscard]] virtual std::string_view Find(std::string_view text, std::size_t from) = 0;
  bool gave_up = false;
};

using MakePattern = std::function<std::unique_ptr<Pattern>(const char* pattern)>;
[[nodiscard]] std::unique_ptr<Pattern> Pcre2Jit(const char* pattern);
[[nodiscard]] std::unique_ptr<Pattern> Re2(const char* pattern);

// The addresses found so far, without letter case, over all pages of a run.
struct FoundSet {
  std::unordered_set<std::string> lower;
  std::vector<std::string> in_order;
};

// The harvest of one page with literal patterns: both passes, the two lists, cross-clean, insertion.
class LiteralHarvest {
 public:
  explicit LiteralHarvest(const MakePattern& make);
  void Page(std::string_view page, FoundSet& found);
  [[nodiscard]] std::string Title(std::string_view page);
  [[nodiscard]] bool gave_up() const;

 private:
  std::unique_ptr<Pattern> tag_, text_, address_, title_;
};

// The harvest of one page with candidates from Hyperscan (a local character, "@", a domain character) and a check of
// the segment around each.
class HyperscanHarvest {
 public:
  HyperscanHarvest();
  ~HyperscanHarvest();
  HyperscanHarvest(const HyperscanHarvest&) = delete;
  HyperscanHarvest& operator=(const HyperscanHarvest&) = delete;
  void Page(std::string_view page, FoundSet& found);

 private:
  struct Impl;
  std::unique_ptr<Impl> impl_;
};

// Queues of links with plain hash sets, as anybody would write them.
struct LiteralLinks {
  std::unordered_set<std::string> links, hosts;
};

// The tag walk with a search for every "<", ">" and "</a", a lower-cased copy of the page, and strings all the way.
void LiteralTagWalk(std::string_view page, std::string_view address, LiteralLinks& links);

}  // namespace quenlar::bench
