#include "page/robots.h"

#include <algorithm>

#include "base/ascii.h"
#include "base/number.h"
#include "page/url_bytes.h"

namespace quenlar {
namespace {

std::string_view Trimmed(std::string_view text) {
  const auto blank = [](char c) { return c == ' ' || c == '\t'; };
  while (!text.empty() && blank(text.front())) text.remove_prefix(1);
  while (!text.empty() && blank(text.back())) text.remove_suffix(1);
  return text;
}

struct Line {
  std::string_view name, value;
};

// "name: value # comment". Where the colon is missing, a line of two words counts all the same.
Line ParseLine(std::string_view text) {
  text = Trimmed(text.substr(0, text.find('#')));
  if (const std::size_t colon = text.find(':'); colon != text.npos) {
    return {Trimmed(text.substr(0, colon)), Trimmed(text.substr(colon + 1))};
  }
  const std::size_t blank = text.find_first_of(" \t");
  if (blank == text.npos) return {};
  const std::string_view value = Trimmed(text.substr(blank));
  return value.find_first_of(" \t") == value.npos ? Line{text.substr(0, blank), value} : Line{};
}

// Takes the first line off a text; CR, LF and CR LF end one. The last one may lack its end.
std::string_view TakeLine(std::string_view& body) {
  const std::size_t end = std::min(body.find_first_of("\r\n"), body.size());
  const std::string_view line = body.substr(0, end);
  const bool both = body.substr(end).starts_with("\r\n");
  body.remove_prefix(std::min(end + (both ? 2 : 1), body.size()));
  return line;
}

// The part of a robots.txt that is read.
std::string_view ReadPart(std::string_view body) {
  if (body.size() > kMostRobotsBytes) {
    const std::size_t end = body.find_last_of("\r\n", kMostRobotsBytes - 1);
    body = body.substr(0, end == body.npos ? 0 : end + 1);
  }
  if (body.starts_with("\xEF\xBB\xBF")) body.remove_prefix(3);
  return body;
}

// Whom a "User-agent" line means.
enum class Agent { kOther, kThis, kEvery };

Agent AgentOf(std::string_view value, std::string_view agent) {
  if (value == "*" || value.starts_with("* ") || value.starts_with("*\t")) return Agent::kEvery;
  std::size_t end = 0;
  while (end < value.size() && (IsLetter(value[end]) || value[end] == '-' || value[end] == '_')) ++end;
  return end > 0 && EqualsIgnoreCase(value.substr(0, end), agent) ? Agent::kThis : Agent::kOther;
}

// The unreserved characters of RFC 3986 apart from letters and digits.
bool IsPlainMark(char c) { return c == '-' || c == '.' || c == '_' || c == '~'; }

// One form for what is written in several ways (RFC 9309, 2.2.2): plain marks decoded, reserved characters as they
// stand, all else percent-encoded by capitals. The apostrophe, which the URL Standard encodes in queries alone, is
// always encoded. In two points the form follows the reference parser's published tests and not the RFC, and the test
// RobotsEncoding.IsComparedInOneForm holds both: letters and digits that somebody has encoded stay encoded, and bytes
// beyond ASCII are encoded in rules but not in targets, where a URL never has any.
enum class Role { kRule, kTarget };

std::string ComparedForm(std::string_view text, Role role) {
  std::string form;
  form.reserve(text.size());
  for (std::size_t at = 0; at < text.size(); ++at) {
    const char c = text[at];
    const int high = c == '%' && at + 2 < text.size() ? HexDigit(text[at + 1]) : -1;
    const int low = high >= 0 ? HexDigit(text[at + 2]) : -1;
    if (low >= 0) {
      const char decoded = static_cast<char>(high * 16 + low);
      if (IsPlainMark(decoded)) {
        form += decoded;
      } else {
        AppendPercentEncoded(decoded, form);
      }
      at += 2;
    } else if (IsWord(c) || std::string_view("-.~%:/?#[]@!$&()*+,;=").find(c) != std::string_view::npos ||
               (role == Role::kTarget && static_cast<signed char>(c) < 0)) {
      form += c;
    } else {
      AppendPercentEncoded(c, form);
    }
  }
  return form;
}

// "*" stands for any characters, "$" at the end of the pattern for the end of the text. What is between two stars is
// looked for from left to right and never again.
bool Matches(std::string_view pattern, std::string_view text) {
  const bool whole = pattern.ends_with('$');
  if (whole) pattern.remove_suffix(1);
  const std::size_t first_star = std::min(pattern.find('*'), pattern.size());
  if (!text.starts_with(pattern.substr(0, first_star))) return false;
  if (first_star == pattern.size()) return !whole || text.size() == pattern.size();

  text.remove_prefix(first_star);
  pattern.remove_prefix(first_star + 1);
  for (std::size_t star = pattern.find('*'); star != pattern.npos; star = pattern.find('*')) {
    const std::size_t found = text.find(pattern.substr(0, star));
    if (found == text.npos) return false;
    text.remove_prefix(found + star);
    pattern.remove_prefix(star + 1);
  }
  return whole ? text.ends_with(pattern) : text.find(pattern) != text.npos;
}

std::optional<double> DelayOf(std::string_view value) {
  if (value.empty() || !(IsDigit(value.front()) || value.front() == '.')) return std::nullopt;
  return std::min(LeadingNumber(value), kLongestCrawlDelay);
}

}  // namespace

RobotsRules::RobotsRules(std::string_view body, std::string_view agent) {
  // The rules for this program and those for all are kept apart until it is known which count.
  RobotsRules own, every;
  bool own_named = false;
  bool names_own = false, names_every = false;  // whom the group at hand is for
  bool in_rules = true;                         // the next "User-agent" line begins a group
  std::optional<double> group_delay;
  const auto end_group = [&] {
    if (names_own) own.delay_ = std::max(own.delay_, group_delay);
    if (names_every) every.delay_ = std::max(every.delay_, group_delay);
    names_own = names_every = in_rules = false;
    group_delay.reset();
  };

  body = ReadPart(body);
  for (std::uint32_t number = 1; !body.empty(); ++number) {
    const Line line = ParseLine(TakeLine(body));
    if (EqualsIgnoreCase(line.name, "user-agent")) {
      if (in_rules) end_group();
      const Agent named = AgentOf(line.value, agent);
      names_own = names_own || named == Agent::kThis;
      names_every = names_every || named == Agent::kEvery;
      own_named = own_named || names_own;
    } else if (const bool allow = EqualsIgnoreCase(line.name, "allow");
               allow || EqualsIgnoreCase(line.name, "disallow")) {
      in_rules = true;
      if (names_own) own.AddRule(line.value, allow, number);
      if (names_every) every.AddRule(line.value, allow, number);
    } else if (EqualsIgnoreCase(line.name, "crawl-delay")) {
      group_delay = std::max(group_delay, DelayOf(line.value));
    } else if (EqualsIgnoreCase(line.name, "sitemap") && !line.value.empty()) {
      sitemaps_.emplace_back(line.value);
    }
  }
  end_group();

  RobotsRules& chosen = own_named ? own : every;
  rules_ = std::move(chosen.rules_);
  delay_ = chosen.delay_;
  std::stable_sort(rules_.begin(), rules_.end(), [](const Rule& a, const Rule& b) {
    return a.pattern.size() != b.pattern.size() ? a.pattern.size() > b.pattern.size() : a.allow > b.allow;
  });
}

void RobotsRules::AddRule(std::string_view value, bool allow, std::uint32_t line) {
  if (value.empty()) return;  // says nothing
  rules_.push_back({ComparedForm(value, Role::kRule), allow, line});
  // What allows the start page of a folder by its file's name allows the folder.
  const std::string_view pattern = rules_.back().pattern;
  if (!allow || !(pattern.ends_with("/index.html") || pattern.ends_with("/index.htm"))) return;
  rules_.push_back({std::string(pattern.substr(0, pattern.rfind('/') + 1)) + "$", true, line});
}

RobotsRules::Verdict RobotsRules::Check(std::string_view target) const {
  if (rules_.empty() || target.substr(0, target.find('?')) == "/robots.txt") return {};
  const std::string compared = ComparedForm(target, Role::kTarget);
  for (const Rule& rule : rules_) {
    if (Matches(rule.pattern, compared)) return {rule.allow, rule.line};
  }
  return {};
}

std::string RobotsLine(std::string_view body, int number) {
  body = ReadPart(body);
  for (int i = 1; i < number && !body.empty(); ++i) TakeLine(body);
  return std::string(number < 1 ? std::string_view() : TakeLine(body));
}

}  // namespace quenlar
