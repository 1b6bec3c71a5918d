#include "page/page_links.h"

#include <algorithm>
#include <cstddef>
#include <optional>

#include "base/ascii.h"
#include "base/byte_search.h"
#include "page/attributes.h"
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
// More texts of one target are not kept: the first is often a picture's or "more", a later one says where it leads.
constexpr std::size_t kMostTexts = 4;

// Goes through the texts of an <a>, from the end of its tag on.
class ContentReader {
 public:
  explicit ContentReader(std::string_view content) : rest_(content.substr(0, kMostContent)) {}
  // False behind the last text.
  bool Next(std::string_view& text) {
    if (rest_.empty()) return false;
    text = rest_.substr(0, FindByte(rest_, '<'));
    rest_.remove_prefix(text.size());
    const std::size_t close = FindByte(rest_, '>');
    if (close == std::string_view::npos || IsAnchor(rest_))
      rest_ = {};
    else
      rest_.remove_prefix(close + 1);
    return true;
  }

 private:
  // Whether a tag ends the <a>: its end tag, or another <a>.
  static bool IsAnchor(std::string_view tag) {
    const std::size_t name = tag[1] == '/' ? 2 : 1;
    return ToLower(tag[name]) == 'a' && name + 1 < tag.size() && EndsTagName(tag[name + 1]);
  }

  std::string_view rest_;
};

// What stands in the <a>; empty where it shows no text.
std::string_view ShownContent(std::string_view content) {
  ContentReader reader(content);
  std::size_t end = 0;
  bool shows = false;
  for (std::string_view text; reader.Next(text);) {
    shows = shows || !TrimHtmlBlanks(text).empty();
    end = static_cast<std::size_t>(text.data() + text.size() - content.data());
  }
  return shows ? content.substr(0, end) : std::string_view();
}

std::string ShownText(std::string_view content) {
  ContentReader reader(content);
  std::string all;
  for (std::string_view text; reader.Next(text);) all += text;
  return ShownTitle(all);
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

void PageLinks::Add(std::string_view raw_target, LinkSource source, LinkFollow follow, std::string_view content) {
  const std::string_view text = Decoded(raw_target, ReferencePlace::kAttribute, scratch_);
  Add(text, text.data() != raw_target.data(), source, follow, content);
}

void PageLinks::Add(std::string_view text, bool copy, LinkSource source, LinkFollow follow, std::string_view content) {
  text = TrimTarget(text);
  text = text.substr(0, FindByte(text, '#'));
  if (text.empty()) return;
  // A target that may have any ending is another one than the same target that may not.
  const std::uint32_t hash = hash_.Exact(text) + (IsForPagesOnly(source) ? 1 : 0);
  const std::uint32_t known = index_.Find(hash, [&](std::uint32_t number) {
    const Target& target = targets_[number];
    return target.text == text && IsForPagesOnly(target.source) == IsForPagesOnly(source);
  });
  if (known != IndexTable::kNone) {
    Target& target = targets_[known];
    target.follow = std::max(target.follow, follow);
    return AddContent(target, content);
  }
  index_.Insert(hash, static_cast<std::uint32_t>(targets_.size()));
  targets_.push_back({copy ? decoded_.Keep(text) : text, source, follow});
  AddContent(targets_.back(), content);
}

void PageLinks::AddContent(Target& target, std::string_view content) {
  const std::string_view markup = ShownContent(content);
  if (markup.empty()) return;
  std::uint32_t* last = &target.content;
  for (std::size_t count = 1; *last != IndexTable::kNone; ++count) {
    Content& known = contents_[*last];
    if (count == kMostTexts || known.markup == markup) return;
    last = &known.next;
  }
  *last = static_cast<std::uint32_t>(contents_.size());
  contents_.push_back({markup});
}

void PageLinks::AddTexts(const Target& target, std::string& text) const {
  for (std::uint32_t i = target.content; i != IndexTable::kNone; i = contents_[i].next) {
    const std::string shown = ShownText(contents_[i].markup);
    if (text.empty()) {
      text = shown;
    } else if (text.find(shown) == std::string::npos) {
      text.append(1, '\n').append(shown);
    }
  }
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
      AddTexts(target, links[known].text);
      continue;
    }
    index.Insert(hash, static_cast<std::uint32_t>(links.size()));
    links.push_back({url->href(), target.source, follow, {}});
    AddTexts(target, links.back().text);
  }
  return links;
}

}  // namespace quenlar
