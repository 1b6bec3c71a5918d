#include "page/page_links.h"

#include <algorithm>
#include <optional>

#include "base/byte_search.h"
#include "page/charset.h"
#include "page/html_blanks.h"
#include "page/page_endings.h"
#include "page/page_title.h"
#include "page/references.h"

namespace quenlar {
namespace {

constexpr std::size_t kLongestUrl = 2083;  // bytes

// Whether the target is worth a page whatever its ending.
bool IsForPagesOnly(LinkSource source) { return source == LinkSource::kCanonical || source == LinkSource::kRefresh; }

// Without what a URL parser cuts off: blanks and control characters at both ends.
std::string_view TrimTarget(std::string_view target) {
  const auto cut = [](char c) { return static_cast<unsigned char>(c) <= ' '; };
  while (!target.empty() && cut(target.front())) target.remove_prefix(1);
  while (!target.empty() && cut(target.back())) target.remove_suffix(1);
  return target;
}

// More of an <a> is not looked at. A text that leads somewhere is shorter.
constexpr std::size_t kMostContent = 512;  // bytes

// Takes the text in front of the next tag off `markup`.
std::string_view TakeText(std::string_view& markup) {
  const std::string_view text = markup.substr(0, FindByte(markup, '<'));
  markup.remove_prefix(text.size());
  const std::size_t close = FindByte(markup, '>');
  markup.remove_prefix(close < markup.size() ? close + 1 : markup.size());
  return text;
}

bool HasText(std::string_view markup) {
  while (!markup.empty()) {
    if (!TrimHtmlBlanks(TakeText(markup)).empty()) return true;
  }
  return false;
}

std::string ShownText(std::string_view markup) {
  std::string text;
  while (!markup.empty()) text += TakeText(markup);
  return ShownTitle(text);
}

}  // namespace

std::string_view LinkSourceName(LinkSource source) {
  switch (source) {
    case LinkSource::kA:
      return "a";
    case LinkSource::kArea:
      return "area";
    case LinkSource::kFrame:
      return "frame";
    case LinkSource::kIframe:
      return "iframe";
    case LinkSource::kRefresh:
      return "refresh";
    case LinkSource::kCanonical:
      return "canonical";
    case LinkSource::kNext:
      return "next";
    case LinkSource::kAlternate:
      break;
  }
  return "alternate";
}

std::size_t PageLinks::Add(std::string_view raw_target, LinkSource source, LinkFollow follow) {
  const std::string_view text = Decoded(raw_target, ReferencePlace::kAttribute, scratch_);
  return Add(text, text.data() != raw_target.data(), source, follow);
}

std::size_t PageLinks::Add(std::string_view text, bool copy, LinkSource source, LinkFollow follow) {
  text = TrimTarget(text);
  text = text.substr(0, FindByte(text, '#'));
  if (text.empty()) return kNoTarget;
  // A target that may have any ending is another one than the same target that may not.
  const std::uint32_t hash = hash_.Exact(text) + (IsForPagesOnly(source) ? 1 : 0);
  const std::uint32_t known = index_.Find(hash, [&](std::uint32_t number) {
    const Target& target = targets_[number];
    return target.text == text && IsForPagesOnly(target.source) == IsForPagesOnly(source);
  });
  if (known != IndexTable::kNone) {
    targets_[known].follow = std::max(targets_[known].follow, follow);
    return known;
  }
  index_.Insert(hash, static_cast<std::uint32_t>(targets_.size()));
  targets_.push_back({copy ? decoded_.Keep(text) : text, source, follow, {}});
  return targets_.size() - 1;
}

void PageLinks::Content(std::size_t target, std::string_view markup) {
  markup = markup.substr(0, kMostContent);
  if (targets_[target].content.empty() && HasText(markup)) targets_[target].content = markup;
}

std::vector<PageLink> PageLinks::Resolve(const Url* base, const Idna& idna, LinkFollow at_most) const {
  std::vector<PageLink> links;
  IndexTable index;
  std::string well_formed;
  for (const Target& target : targets_) {
    const std::optional<Url> url = ParseUrl(WellFormed(target.text, well_formed), base, idna);
    if (!url || url->href().size() > kLongestUrl) continue;
    if (!IsForPagesOnly(target.source) && HasEndingOfNoPage(url->path())) continue;
    const LinkFollow follow = std::min(target.follow, at_most);
    const std::uint32_t hash = hash_.Exact(url->href());
    const std::uint32_t known =
        index.Find(hash, [&](std::uint32_t number) { return links[number].url == url->href(); });
    if (known != IndexTable::kNone) {
      links[known].follow = std::max(links[known].follow, follow);
      if (links[known].text.empty()) links[known].text = ShownText(target.content);
      continue;
    }
    index.Insert(hash, static_cast<std::uint32_t>(links.size()));
    links.push_back({url->href(), target.source, follow, ShownText(target.content)});
  }
  return links;
}

}  // namespace quenlar
