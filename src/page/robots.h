// What a robots.txt allows one program: RFC 9309, with Crawl-delay and Sitemap.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace quenlar {

// What lies behind these bytes of a robots.txt is not read; a line that they cut is not read either. RFC 9309 asks for
// 500 KiB at least.
inline constexpr std::size_t kMostRobotsBytes = 512 * 1024;

// A longer Crawl-delay counts as this many seconds.
inline constexpr double kLongestCrawlDelay = 30;

class RobotsRules {
 public:
  struct Verdict {
    bool allowed = true;
    std::optional<std::uint32_t> line;  // of the rule that decides, counted from 1; empty where none matches
  };

  // Without rules everything is allowed.
  RobotsRules() = default;

  // The rules of `body` (the bytes of a robots.txt) for the program whose product token is `agent`, in any letter case:
  // those of all groups that name it, or else those of all groups for "*". Takes time in proportion to the body.
  RobotsRules(std::string_view body, std::string_view agent);

  // `target` is the path and the query that would be asked for (Url::target). The longest matching rule decides,
  // "Allow" among equally long ones; /robots.txt itself is always allowed. In the worst case this takes time in
  // proportion to the bytes of all rules, times the bytes of the target.
  [[nodiscard]] Verdict Check(std::string_view target) const;

  // Seconds between two pages, kLongestCrawlDelay at most: the largest Crawl-delay of the rules' groups.
  [[nodiscard]] std::optional<double> delay() const { return delay_; }

  // The values of all Sitemap lines as written; they hold for every program.
  [[nodiscard]] const std::vector<std::string>& sitemaps() const { return sitemaps_; }

 private:
  struct Rule {
    std::string pattern;  // in the form in which Check compares
    bool allow = false;
    std::uint32_t line = 0;
  };

  void AddRule(std::string_view value, bool allow, std::uint32_t line);

  std::vector<Rule> rules_;  // the rule that decides before those over which it decides
  std::optional<double> delay_;
  std::vector<std::string> sitemaps_;
};

// The line of a robots.txt with this number, counted from 1 as in a verdict. Empty where there is none.
[[nodiscard]] std::string RobotsLine(std::string_view body, int number);

}  // namespace quenlar
