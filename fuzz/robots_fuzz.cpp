// robots.txt: any bytes are read, and the decision is that of a plain reader that tries every rule line by line, and
// matches patterns by following all ways through them.
#include <algorithm>
#include <optional>
#include <string>
#include <vector>

#include "fuzz/target.h"
#include "page/robots.h"

using namespace quenlar;

namespace {

// All places of the text that a part of the pattern can reach.
bool PlainMatch(std::string_view pattern, std::string_view text) {
  std::vector<bool> reached(text.size() + 1);
  reached[0] = true;
  for (std::size_t at = 0; at < pattern.size(); ++at) {
    if (pattern[at] == '$' && at + 1 == pattern.size()) return reached[text.size()];
    std::vector<bool> next(text.size() + 1);
    for (std::size_t place = 0; place <= text.size(); ++place) {
      if (!reached[place]) continue;
      if (pattern[at] == '*') {
        std::fill(next.begin() + static_cast<std::ptrdiff_t>(place), next.end(), true);
        break;
      }
      if (place < text.size() && text[place] == pattern[at]) next[place + 1] = true;
    }
    reached = std::move(next);
  }
  return std::find(reached.begin(), reached.end(), true) != reached.end();
}

// A rule out of characters that stand for themselves.
std::string PlainRule(std::string_view text) {
  constexpr std::string_view kCharacters = "/ab*$?.-=&/*";
  std::string rule = "/";
  for (const char c : text) rule += kCharacters[static_cast<unsigned char>(c) % kCharacters.size()];
  return rule;
}

void CheckPlainRules(fuzz::Feed& feed) {
  const std::string target = PlainRule(feed.Text().substr(0, 40));
  std::string body = "User-agent: *\n";
  std::string longest;
  std::optional<bool> allowed;
  while (!feed.empty()) {
    const bool allow = feed.Byte() % 2 == 0;
    const std::string rule = PlainRule(feed.Text().substr(0, 40));
    body += (allow ? "Allow: " : "Disallow: ") + rule + "\n";
    if (!PlainMatch(rule, target)) continue;
    if (!allowed || rule.size() > longest.size() || (rule.size() == longest.size() && allow)) {
      longest = rule;
      allowed = allow;
    }
  }
  const RobotsRules::Verdict verdict = RobotsRules(body, "any").Check(target);
  FUZZ_CHECK(verdict.allowed == allowed.value_or(true) && verdict.line.has_value() == allowed.has_value());
}

void CheckBytes(std::string_view body, std::string_view target) {
  const RobotsRules rules(body, "quenlar");
  const RobotsRules::Verdict verdict = rules.Check(target);
  FUZZ_CHECK(verdict.allowed || verdict.line);
  FUZZ_CHECK(!rules.delay() || (*rules.delay() >= 0 && *rules.delay() <= kLongestCrawlDelay));
  std::size_t ends = 1;
  for (const char c : body) ends += c == '\n' || c == '\r';
  FUZZ_CHECK(!verdict.line || (*verdict.line >= 1 && *verdict.line <= ends));
  // What stands before the first name of a program, and what stands behind a "#", says nothing.
  const RobotsRules::Verdict same =
      RobotsRules("Disallow: /\n# User-agent: *\n" + std::string(body), "quenlar").Check(target);
  if (!body.starts_with("\xEF\xBB\xBF")) FUZZ_CHECK(same.allowed == verdict.allowed);
  FUZZ_CHECK(rules.Check("/robots.txt").allowed);
}

}  // namespace

QUENLAR_FUZZ_TARGET(robots) {
  fuzz::Feed feed(bytes);
  if (feed.Byte() % 2 == 0) {
    CheckPlainRules(feed);
  } else {
    const std::string target = "/" + std::string(feed.Text());
    CheckBytes(feed.Rest(), target);
  }
}
