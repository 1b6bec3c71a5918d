#include "page/markup_reader.h"

#include <algorithm>

namespace quenlar {
namespace {

constexpr std::size_t kNone = std::string_view::npos;

// Whether the end tag of `name` begins at page[at], which is "<": "</name" and a byte that ends a name.
bool IsEndTagOf(std::string_view page, std::size_t at, std::string_view name) {
  const std::size_t end = at + 2 + name.size();
  if (end >= page.size() || page[at + 1] != '/' || !StartsWithIgnoreCase(page.substr(at + 2), name)) return false;
  return EndsTagName(page[end]);
}

// Whether "<script" and a byte that ends a name stand at page[at], which is "<".
bool IsScriptStart(std::string_view page, std::size_t at) {
  constexpr std::string_view kName = "script";
  const std::size_t end = at + 1 + kName.size();
  if (end >= page.size() || !StartsWithIgnoreCase(page.substr(at + 1), kName)) return false;
  return EndsTagName(page[end]);
}

}  // namespace

void MarkupReader::Inside(Markup& markup, Markup::Kind kind, std::size_t open, std::size_t inside,
                          std::size_t inside_end, std::size_t end) {
  markup.kind = kind;
  markup.name = TagName::kOther;
  markup.begin = open;
  markup.inside = inside;
  markup.inside_end = inside_end;
  markup.end = at_ = end;
}

void MarkupReader::UntilClose(Markup& markup, Markup::Kind kind, std::size_t open, std::size_t inside) {
  const std::size_t close = FindByte(page_, '>', inside);
  const std::size_t inside_end = std::min(close, page_.size());
  Inside(markup, kind, open, inside, inside_end, std::min(inside_end + 1, page_.size()));
}

void MarkupReader::Declaration(Markup& markup, std::size_t open) {
  const std::string_view rest = page_.substr(open + 2);
  if (rest.starts_with("--")) return Comment(markup, open);
  if (StartsWithIgnoreCase(rest, "doctype")) return UntilClose(markup, Markup::Kind::kDeclaration, open, open + 9);
  constexpr std::string_view kCdata = "[CDATA[";
  // The element at hand counts, and where HTML begins again it still is one of svg or math.
  const bool in_foreign = !open_.empty() && open_.back().html_open == 0;
  if (!in_foreign || !rest.starts_with(kCdata)) return UntilClose(markup, Markup::Kind::kComment, open, open + 2);
  const std::size_t inside = open + 2 + kCdata.size();
  std::size_t close = FindByte(page_, '>', inside);
  while (close != kNone && (close < inside + 2 || page_[close - 1] != ']' || page_[close - 2] != ']')) {
    close = FindByte(page_, '>', close + 1);
  }
  if (close == kNone) return Inside(markup, Markup::Kind::kCdata, open, inside, page_.size(), page_.size());
  Inside(markup, Markup::Kind::kCdata, open, inside, close - 2, close + 1);
}

// A comment ends at "-->" or "--!>"; "<!-->" and "<!--->" are comments, too.
void MarkupReader::Comment(Markup& markup, std::size_t open) {
  const std::size_t inside = open + 4;
  const auto ends_at = [&](std::size_t place, std::string_view text) {
    return place >= inside && page_.substr(place, text.size()) == text;
  };
  for (std::size_t close = FindByte(page_, '>', inside); close != kNone; close = FindByte(page_, '>', close + 1)) {
    std::size_t inside_end = kNone;
    if (close == inside || (close == inside + 1 && page_[inside] == '-')) inside_end = inside;
    if (ends_at(close - 2, "--")) inside_end = close - 2;
    if (ends_at(close - 3, "--!")) inside_end = close - 3;
    if (inside_end != kNone) return Inside(markup, Markup::Kind::kComment, open, inside, inside_end, close + 1);
  }
  // What could have been the beginning of its end is not part of a comment that the page breaks off in.
  std::string_view rest = page_.substr(std::min(inside, page_.size()));
  for (const std::string_view end : {"--!", "--", "-"}) {
    if (!rest.ends_with(end)) continue;
    rest.remove_suffix(end.size());
    break;
  }
  const std::size_t begin = std::min(inside, page_.size());
  Inside(markup, Markup::Kind::kComment, open, begin, begin + rest.size(), page_.size());
}

void MarkupReader::RawText(Markup& markup) {
  const TagName name = raw_;
  raw_ = TagName::kOther;
  std::size_t end = page_.size();
  if (name == TagName::kScript)
    end = ScriptEnd();
  else if (name != TagName::kPlaintext)
    end = RawTextEnd(TagText(name));
  Inside(markup, Markup::Kind::kRawText, at_, at_, end, end);
  markup.name = name;
}

std::size_t MarkupReader::RawTextEnd(std::string_view name) const {
  for (std::size_t at = FindByte(page_, '<', at_); at != kNone; at = FindByte(page_, '<', at + 1)) {
    if (IsEndTagOf(page_, at, name)) return at;
  }
  return page_.size();
}

// A script may hold "<!--", in which "<script" begins a script whose end tag does not end the element; "-->" ends that.
std::size_t MarkupReader::ScriptEnd() const {
  enum { kPlain, kEscaped, kTwice } state = kPlain;
  for (std::size_t at = at_; at < page_.size(); ++at) {
    if (state == kPlain)
      at = FindByte(page_, '<', at);
    else
      at = FindOneOf(page_, {'<', '>', '>'}, at);
    if (at == kNone) break;
    if (page_[at] == '>') {
      if (at >= at_ + 2 && page_[at - 1] == '-' && page_[at - 2] == '-') state = kPlain;
    } else if (IsEndTagOf(page_, at, "script")) {
      if (state != kTwice) return at;
      state = kEscaped;
    } else if (state == kPlain && page_.substr(at, 4) == "<!--") {
      state = kEscaped;
      at += 3;
    } else if (state == kEscaped && IsScriptStart(page_, at)) {
      state = kTwice;
    }
  }
  return page_.size();
}

void MarkupReader::Enter(const Markup& markup, Realm inside) {
  const std::string_view text = page_.substr(markup.begin + 1, markup.attributes - markup.begin - 1);
  open_.push_back({TagId(markup.name, text), 0, markup.name, inside});
  foreign_ = inside != Realm::kHtml;
}

// Closes all but the outermost `count` elements.
void MarkupReader::LeaveTo(std::size_t count) {
  open_.resize(count);
  foreign_ = count > 0 && open_.back().inside != Realm::kHtml;
}

// Closes the elements up to the next HTML around them.
void MarkupReader::LeaveForeign() {
  std::size_t count = open_.size();
  while (count > 0 && open_[count - 1].inside != Realm::kHtml) --count;
  LeaveTo(count);
}

// Whether HTML begins again in the element: "HTML integration points" and "MathML text integration points".
bool MarkupReader::BeginsHtml(const Markup& markup) const {
  if (open_.back().inside == Realm::kSvg) {
    return markup.name == TagName::kForeignObject || markup.name == TagName::kDesc || markup.name == TagName::kTitle;
  }
  if (markup.name == TagName::kAnnotationXml) {
    AttributeReader attributes(page_, markup.attributes);
    for (TagAttribute attribute; attributes.Next(attribute);) {
      if (!EqualsIgnoreCase(attribute.name, "encoding")) continue;
      return EqualsIgnoreCase(attribute.value, "text/html") ||
             EqualsIgnoreCase(attribute.value, "application/xhtml+xml");
    }
    return false;
  }
  return markup.name == TagName::kMi || markup.name == TagName::kMo || markup.name == TagName::kMn ||
         markup.name == TagName::kMs || markup.name == TagName::kMtext;
}

bool MarkupReader::EndsForeign(const Markup& markup) const {
  if (markup.name != TagName::kFont) return Has(markup.name, kEndsForeign);
  AttributeReader attributes(page_, markup.attributes);
  for (TagAttribute attribute; attributes.Next(attribute);) {
    for (const std::string_view name : {"color", "face", "size"}) {
      if (EqualsIgnoreCase(attribute.name, name)) return true;
    }
  }
  return false;
}

void MarkupReader::ForeignStart(Markup& markup) {
  if (foreign_ && EndsForeign(markup)) LeaveForeign();
  const bool svg = markup.name == TagName::kSvg;
  if (!foreign_ && !svg && markup.name != TagName::kMath) {
    if (!open_.empty() && !Has(markup.name, kNoContent | kOutOfPlace)) ++open_.back().html_open;
    return;
  }
  markup.foreign = true;
  if (markup.self_closing) return;
  if (!foreign_ || (svg && open_.back().name == TagName::kAnnotationXml))
    Enter(markup, svg ? Realm::kSvg : Realm::kMath);
  else
    Enter(markup, BeginsHtml(markup) ? Realm::kHtml : open_.back().inside);
}

void MarkupReader::ForeignEnd(Markup& markup) {
  if (foreign_ && (markup.name == TagName::kP || markup.name == TagName::kBr)) return LeaveForeign();
  markup.foreign = foreign_;
  if (open_.back().html_open > 0) {
    if (!Has(markup.name, kNoContent | kOutOfPlace)) --open_.back().html_open;
    return;
  }
  const std::uint32_t id = TagId(markup.name, page_.substr(markup.begin + 2, markup.attributes - markup.begin - 2));
  // HTML elements between two elements of svg or math stop the search.
  for (std::size_t at = open_.size(), left = kDeepest; at-- > 0 && left-- > 0 && open_[at].html_open == 0;) {
    if (open_[at].id == id) return LeaveTo(at);
  }
}

}  // namespace quenlar
