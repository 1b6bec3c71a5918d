#include "page/open_elements.h"

#include <algorithm>

#include "base/ascii.h"

namespace quenlar {
namespace {

std::string_view TrimStyle(std::string_view text) {
  const auto blank = [](char c) { return static_cast<unsigned char>(c) <= ' '; };
  while (!text.empty() && blank(text.front())) text.remove_prefix(1);
  while (!text.empty() && blank(text.back())) text.remove_suffix(1);
  return text;
}

bool IsOneOf(TagName name, std::initializer_list<TagName> names) {
  return std::find(names.begin(), names.end(), name) != names.end();
}

}  // namespace

ElementLook LookOfStyle(std::string_view style) {
  bool not_displayed = false, invisible = false, overrides = false, right_to_left = false;
  for (std::size_t at = 0; at < style.size();) {
    const std::size_t end = std::min(style.find(';', at), style.size());
    const std::string_view declaration = style.substr(at, end - at);
    at = end + 1;
    const std::size_t colon = declaration.find(':');
    if (colon == std::string_view::npos) continue;
    const std::string_view property = TrimStyle(declaration.substr(0, colon));
    std::string_view value = declaration.substr(colon + 1);
    value = TrimStyle(value.substr(0, value.find('!')));  // "!important"
    if (EqualsIgnoreCase(property, "display"))
      not_displayed = EqualsIgnoreCase(value, "none");
    else if (EqualsIgnoreCase(property, "visibility"))
      invisible = EqualsIgnoreCase(value, "hidden");
    else if (EqualsIgnoreCase(property, "unicode-bidi"))
      overrides = EqualsIgnoreCase(value, "bidi-override") || EqualsIgnoreCase(value, "isolate-override");
    else if (EqualsIgnoreCase(property, "direction"))
      right_to_left = EqualsIgnoreCase(value, "rtl");
  }
  return {not_displayed || invisible, overrides && right_to_left};
}

void OpenElements::Count(const Element& element, int change) {
  const auto by = static_cast<std::uint32_t>(change);
  open_of_[element.id & 255] += by;
  if (element.look.hidden) hidden_ += by;
  if (element.look.reversed) reversed_ += by;
}

void OpenElements::Pop() {
  Count(open_.back(), -1);
  open_.pop_back();
}

void OpenElements::Start(TagName name, std::string_view text, ElementLook look, bool self_closing) {
  CloseImplied(name);
  if (self_closing || Has(name, kNoContent)) return;
  const Element element{TagId(name, text), name, look};
  open_.push_back(element);
  Count(element, 1);
}

void OpenElements::End(TagName name, std::string_view text) {
  const std::uint32_t id = TagId(name, text);
  if (open_of_[id & 255] == 0) return;
  bool over_block = false;
  for (std::size_t at = open_.size(), left = kDeepest; at-- > 0 && left-- > 0;) {
    if (open_[at].id != id) {
      over_block = over_block || Has(open_[at].name, kBlock);
      continue;
    }
    // The end tag of an inline element ends no block that was opened within it.
    if (over_block && Has(name, kInline)) {
      Count(open_[at], -1);
      open_.erase(open_.begin() + static_cast<std::ptrdiff_t>(at));
      return;
    }
    while (open_.size() > at) Pop();
    return;
  }
}

// Closes the innermost element that passes `ends`, with all that is in it, unless one that passes `stops` is in
// between.
template <typename Ends, typename Stops>
void OpenElements::CloseInnermost(Ends ends, Stops stops) {
  for (std::size_t at = open_.size(), left = kDeepest; at-- > 0 && left-- > 0;) {
    if (ends(open_[at].name)) {
      while (open_.size() > at) Pop();
      return;
    }
    if (stops(open_[at].name)) return;
  }
}

void OpenElements::CloseImplied(TagName starting) {
  using enum TagName;
  const auto among = [](std::initializer_list<TagName> names) {
    return [names](TagName n) { return IsOneOf(n, names); };
  };
  if (Has(starting, kBlock) || IsOneOf(starting, {kLi, kDd, kDt})) {
    CloseInnermost(among({kP}), [](TagName name) { return !Has(name, kInline); });
  }
  switch (starting) {
    case kLi:
      return CloseInnermost(among({kLi}), among({kUl, kOl, kMenu, kDir, kTable, kTd, kTh}));
    case kDd:
    case kDt:
      return CloseInnermost(among({kDd, kDt}), among({kDl, kTable, kTd, kTh}));
    case kOption:
    case kOptgroup:
      return CloseInnermost(among({kOption}), [](TagName name) { return !Has(name, kInline); });
    case kTd:
    case kTh:
      return CloseInnermost(among({kTd, kTh}), among({kTr, kTable}));
    case kTr:
      return CloseInnermost(among({kTr}), among({kTable}));
    default:
      return;
  }
}

}  // namespace quenlar
