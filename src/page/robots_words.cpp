#include "page/robots_words.h"

#include <algorithm>

#include "base/ascii.h"
#include "page/html_blanks.h"

namespace quenlar {
namespace {

constexpr std::string_view kAgent = "quenlar";

// Words that have a value behind a colon, so that they are not the name of an agent.
bool HasValue(std::string_view name) {
  for (const std::string_view word : {"unavailable_after", "max-snippet", "max-image-preview", "max-video-preview"}) {
    if (EqualsIgnoreCase(name, word)) return true;
  }
  return false;
}

// An agent's name is one product token (RFC 9309, 2.2.1); a time of day, as in a date, is none.
bool IsAgentName(std::string_view name) {
  return !name.empty() && std::all_of(name.begin(), name.end(), [](char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '-' || c == '_';
  });
}

}  // namespace

void RobotsWords::Add(std::string_view word) {
  word = TrimHtmlBlanks(word);
  if (!word.empty()) words_.push_back(Lower(word));
}

bool RobotsWords::Has(std::string_view word) const {
  return std::find(words_.begin(), words_.end(), word) != words_.end();
}

void RobotsWords::AddMeta(std::string_view content) {
  for (const std::string_view word : Split(content, ",")) Add(word);
}

void RobotsWords::AddHeader(std::string_view value) {
  bool for_this_agent = true;
  for (std::string_view word : Split(value, ",")) {
    const std::size_t colon = word.find(':');
    const std::string_view name = TrimHtmlBlanks(word.substr(0, colon));
    if (colon != std::string_view::npos && IsAgentName(name) && !HasValue(name)) {
      for_this_agent = EqualsIgnoreCase(name, kAgent);
      word.remove_prefix(colon + 1);
    }
    if (for_this_agent) Add(word);
  }
}

bool IsRobotsName(std::string_view name) {
  name = TrimHtmlBlanks(name);
  return EqualsIgnoreCase(name, "robots") || EqualsIgnoreCase(name, kAgent);
}

}  // namespace quenlar
