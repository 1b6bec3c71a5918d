// The tags, comments and texts of a page, as the HTML Standard's tokenizer sees them, in one pass over its bytes.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

#include "base/ascii.h"
#include "base/byte_search.h"
#include "page/attributes.h"
#include "page/tag_end.h"
#include "page/tag_names.h"
#include "page/tag_pass.h"

namespace quenlar {

// A piece of markup and the text in front of it. All are places in the page.
struct Markup {
  enum class Kind : std::uint8_t {
    kStartTag,
    kEndTag,
    kComment,      // also what the standard calls a bogus comment
    kDeclaration,  // <!DOCTYPE ...>
    kCdata,        // text in svg and math
    kRawText,      // the content of an element that has no markup in it; `name` is the element's
    kEnd,          // of the page: only the text in front of it counts
  };
  Kind kind = Kind::kEnd;
  TagName name = TagName::kOther;          // of tags and raw texts
  bool foreign = false;                    // a start tag of svg or math, or in there
  bool self_closing = false;               // of tags
  std::size_t text_begin = 0;              // the text in front goes on to `begin`
  std::size_t begin = 0, end = 0;          // the markup; of tags, "<" and the place behind ">"
  std::size_t attributes = 0;              // of tags: the place behind the name
  std::size_t inside = 0, inside_end = 0;  // of comments, declarations, CDATA and raw texts: what is in them
};

// Reads a page from its beginning. What is never closed (a comment, a quote, a script) reaches to the end of the page
// and is looked for once, so the time is linear in the page. Memory: a few bytes an open element of svg or math.
//
// The standard's tokenizer asks the tree that is being built about one thing: whether it is in foreign content, where
// <style> and <title> are no raw text and CDATA sections are text. Here the open elements of svg and math, and how many
// HTML elements are open in each of them, stand for the tree.
class MarkupReader {
 public:
  // `links`: whether links matter in what is passed over.
  explicit MarkupReader(std::string_view page, bool links = true)
      : page_(page), wanted_(links ? tag_names::kWithLinks : tag_names::kWithoutLinks) {}

  // What begins before `all_from` may be passed over where it has no part in links, title, base and words for robots.
  // The text in front of a markup is then not told of.
  void Next(Markup& markup, std::size_t all_from = 0) {
    markup.text_begin = at_;
    if (raw_ != TagName::kOther) return RawText(markup);
    if (!open_.empty()) all_from = 0;
    for (std::size_t open = NextOpen(at_, all_from);; open = NextOpen(open, all_from)) {
      if (open >= page_.size() || open + 1 >= page_.size()) return AtEnd(markup);
      const char next = page_[open + 1];
      if (IsLetter(next)) {
        if (open >= all_from || open + 3 >= page_.size() ||
            tag_names::HasBeginning(wanted_, next, page_[open + 2], page_[open + 3])) {
          if (Tag(markup, open, open + 1)) return StartTag(markup);
          return AtEnd(markup, open);
        }
        if (!PassTag(open, open + 1)) return AtEnd(markup, open);
        open = at_;
      } else if (next == '/') {
        if (open + 2 >= page_.size()) return AtEnd(markup);
        if (!IsLetter(page_[open + 2])) return UntilClose(markup, Markup::Kind::kComment, open, open + 2);
        if (open >= all_from) {
          if (Tag(markup, open, open + 2)) return EndTag(markup);
          return AtEnd(markup, open);
        }
        if (!PassTag(open, open + 2)) return AtEnd(markup, open);
        open = at_;
      } else if (next == '!') {
        return Declaration(markup, open);
      } else if (next == '?') {
        return UntilClose(markup, Markup::Kind::kComment, open, open + 1);
      } else {
        ++open;
      }
    }
  }

  // The place behind the last markup.
  [[nodiscard]] std::size_t at() const { return at_; }
  // Whether the place at hand is in svg or math.
  [[nodiscard]] bool InForeign() const { return !open_.empty(); }

  // Whether raw text comes next.
  [[nodiscard]] bool InRawText() const { return raw_ != TagName::kOther; }

  // Remembers a place to go back to: `at`, and from then on the last tag passed over that is certainly not inline. At
  // `at` no raw text, svg or math is open.
  void MarkPlace(std::size_t at) { marked_ = at; }
  void GoBack() {
    at_ = marked_;
    raw_ = TagName::kOther;
    open_.clear();
    foreign_ = false;
  }

  // Reads on as if the start tag `name` had just been read.
  void StartIn(TagName name) { raw_ = name; }

 private:
  static constexpr std::size_t kDeepest = 256;  // how far the search for the element that a tag ends goes

  enum class Realm : std::uint8_t { kHtml, kSvg, kMath };
  // An open element of svg or math.
  struct Foreign {
    std::uint32_t id;         // see TagId
    std::uint32_t html_open;  // how many HTML elements are open in it
    TagName name;
    Realm inside;  // what its content is
  };

  void AtEnd(Markup& markup) { AtEnd(markup, page_.size()); }
  // A tag that the page breaks off in is not one, and no text either.
  void AtEnd(Markup& markup, std::size_t text_end) {
    markup.kind = Markup::Kind::kEnd;
    markup.begin = text_end;
    markup.end = at_ = page_.size();
  }

  // The next "<" at or behind `at` that cannot be passed over in the fast way.
  [[nodiscard]] std::size_t NextOpen(std::size_t at, std::size_t all_from) {
    constexpr std::size_t kWorthIt = 128;
    if (at < all_from && all_from - at >= kWorthIt) {
      const TagPass passed = PassUsualTags(page_, {at, marked_}, all_from, wanted_);
      marked_ = passed.marked;
      at = passed.at;
    }
    return FindByte(page_, '<', at);
  }

  // False where the page ends within the tag.
  bool Tag(Markup& markup, std::size_t open, std::size_t name_begin) {
    const std::size_t at = FindEndOfName(page_, name_begin + 1, '>');
    if (at >= page_.size()) return false;
    markup.name = FindTagName(page_, name_begin, at - name_begin);
    markup.begin = open;
    markup.attributes = at;
    if (!PassAttributes(at, markup.self_closing)) return false;
    markup.end = at_;
    return true;
  }
  // The same for a tag that is only passed over.
  bool PassTag(std::size_t open, std::size_t name_begin) {
    const std::size_t at = FindEndOfName(page_, name_begin + 1, '>');
    bool self_closing;
    if (at >= page_.size() || !PassAttributes(at, self_closing)) return false;
    if (IsSurelyNotInline(page_[name_begin], page_[name_begin + 1])) marked_ = open;
    return true;
  }
  // `at` is the place behind the tag's name.
  bool PassAttributes(std::size_t at, bool& self_closing) {
    self_closing = false;
    if (page_[at] == '>') {
      at_ = at + 1;
      return true;
    }
    const std::size_t close = FindUsualTagEnd(page_, at);
    if (close != std::string_view::npos) {
      self_closing = page_[close - 1] == '/';
      at_ = close + 1;
      return true;
    }
    AttributeReader attributes(page_, at);
    for (TagAttribute attribute; attributes.Next(attribute);) {
    }
    self_closing = attributes.self_closing();
    at_ = attributes.end();
    return at_ != std::string_view::npos;
  }

  void StartTag(Markup& markup) {
    markup.kind = Markup::Kind::kStartTag;
    markup.foreign = false;
    if (!open_.empty() || markup.name == TagName::kSvg || markup.name == TagName::kMath) {
      ForeignStart(markup);
      if (markup.foreign) return;
    }
    if (Has(markup.name, kRawText)) raw_ = markup.name;
  }
  void EndTag(Markup& markup) {
    markup.kind = Markup::Kind::kEndTag;
    markup.foreign = false;
    if (!open_.empty()) ForeignEnd(markup);
  }

  void RawText(Markup& markup);
  void Declaration(Markup& markup, std::size_t open);
  void Comment(Markup& markup, std::size_t open);
  void UntilClose(Markup& markup, Markup::Kind kind, std::size_t open, std::size_t inside);
  void Inside(Markup& markup, Markup::Kind kind, std::size_t open, std::size_t inside, std::size_t inside_end,
              std::size_t end);

  [[nodiscard]] std::size_t RawTextEnd(std::string_view name) const;
  [[nodiscard]] std::size_t ScriptEnd() const;

  void ForeignStart(Markup& markup);
  void ForeignEnd(Markup& markup);
  void Enter(const Markup& markup, Realm inside);
  void LeaveTo(std::size_t count);
  void LeaveForeign();
  [[nodiscard]] bool BeginsHtml(const Markup& markup) const;
  [[nodiscard]] bool EndsForeign(const Markup& markup) const;

  std::string_view page_;
  const tag_names::Beginnings& wanted_;
  std::size_t at_ = 0, marked_ = 0;
  TagName raw_ = TagName::kOther;  // the element whose raw text comes next
  bool foreign_ = false;           // the content at hand is svg or math
  std::vector<Foreign> open_;
};

}  // namespace quenlar
