// The part of reading a page that is about addresses: hands to the finder what may hold one.
#pragma once

#include <algorithm>
#include <cstddef>
#include <string>
#include <string_view>

#include "page/address_finder.h"
#include "page/look_hints.h"
#include "page/markup_reader.h"
#include "page/open_elements.h"
#include "page/page_signs.h"
#include "page/text_runs.h"

namespace quenlar {

// Takes the pieces of the page in their order, as long as a sign is ahead. Those that PassableTo allows may be left
// out.
class AddressWalk {
 public:
  // The page and the finder must outlive the walk.
  AddressWalk(std::string_view page, PageSignKind signs, AddressFinder& finder);

  // False when nothing more can be found.
  [[nodiscard]] bool Goes() const { return signs_.next() != std::string_view::npos || runs_.has_sign(); }

  // From `at`, which is the end of the last piece, up to this place nothing matters but where the run at hand ends: the
  // tags that end before it may be passed over, if the walk then goes on at a tag that ends a run, or at `at`. 0 when
  // every piece matters.
  [[nodiscard]] std::size_t PassableTo(std::size_t at) {
    if (runs_.has_sign() || follows_elements_) return 0;
    return looks_ == Looks::kNone ? signs_.next() : std::min(signs_.next(), hints_.Next(at, signs_.next()));
  }

  void Text(std::size_t begin, std::size_t end, bool has_references) {
    if (begin == end) return;
    const bool sign = signs_.PassBefore(end);
    if (!elements_.hidden()) runs_.Text(begin, end, has_references, sign);
  }

  void StartTag(const Markup& tag) {
    const bool reversed = elements_.reversed();
    ElementLook look;
    if (looks_ != Looks::kNone && hints_.Next(tag.attributes, tag.end) < tag.end) look = LookOf(tag);
    const bool sign = signs_.PassBefore(tag.end);
    if (Has(tag.name, kInline))
      runs_.Joint(look.hidden);
    else
      runs_.End(reversed);
    if (!follows_elements_ && (look.hidden || look.reversed) && HasContent(tag)) FollowElements(tag.begin);
    if (follows_elements_) {
      elements_.Start(tag.name, NameOf(tag), look, tag.foreign && tag.self_closing);
      if (elements_.reversed() != reversed) runs_.End(reversed);
    }
    if (sign && !elements_.hidden() && !look.hidden) Attributes(tag);
  }

  void EndTag(const Markup& tag) {
    const bool reversed = elements_.reversed();
    if (Has(tag.name, kInline))
      runs_.Joint(false);
    else
      runs_.End(reversed);
    if (follows_elements_) {
      elements_.End(tag.name, NameOf(tag));
      if (elements_.reversed() != reversed) runs_.End(reversed);
    }
    signs_.PassBefore(tag.end);
  }

  void Comment(const Markup& comment);
  void RawText(const Markup& raw);
  void Declaration(const Markup& declaration) { signs_.PassBefore(declaration.end); }
  void End() { runs_.End(elements_.reversed()); }

 private:
  [[nodiscard]] std::string_view Inside(const Markup& markup) const {
    return page_.substr(markup.inside, markup.inside_end - markup.inside);
  }
  [[nodiscard]] std::string_view NameOf(const Markup& tag) const {
    const std::size_t begin = tag.begin + (tag.kind == Markup::Kind::kEndTag ? 2 : 1);
    return page_.substr(begin, tag.attributes - begin);
  }
  // Whether the page says anything about how an element is shown. It is looked for at the first tag that may say so.
  enum class Looks { kUnknown, kNone, kSome };
  static bool HasContent(const Markup& tag) { return !Has(tag.name, kNoContent) && !(tag.foreign && tag.self_closing); }
  [[nodiscard]] ElementLook LookOf(const Markup& tag);
  void FollowElements(std::size_t end);
  void Attributes(const Markup& tag);

  std::string_view page_;
  AddressFinder& finder_;
  PageSigns signs_;
  TextRuns runs_;
  OpenElements elements_;
  bool follows_elements_ = false;  // an element has come that is not shown, or turned round
  Looks looks_ = Looks::kUnknown;
  LookHints hints_;
  std::string scratch_;
};

}  // namespace quenlar
