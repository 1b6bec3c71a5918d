#include "page/page_reader.h"

#include <array>
#include <utility>

#include "base/ascii.h"
#include "page/charset.h"
#include "page/html_blanks.h"
#include "page/markup_reader.h"
#include "page/open_elements.h"
#include "page/page_signs.h"
#include "page/page_title.h"
#include "page/references.h"
#include "page/text_runs.h"

namespace quenlar {
namespace {

constexpr std::size_t kNone = std::string_view::npos;

// An attribute's value as it is written; the first one of its name counts.
class FirstValue {
 public:
  explicit FirstValue(std::string_view name) : name_(name) {}
  // Whether the attribute has this name.
  bool Take(const TagAttribute& attribute) {
    if (attribute.name.size() != name_.size() || !EqualsIgnoreCase(attribute.name, name_)) return false;
    if (!there_) raw_ = attribute.value;
    there_ = true;
    return true;
  }
  [[nodiscard]] bool there() const { return there_; }
  [[nodiscard]] std::string_view raw() const { return raw_; }
  [[nodiscard]] std::string decoded() const {
    std::string text;
    AppendDecoded(raw_, ReferencePlace::kAttribute, text);
    return text;
  }

 private:
  std::string_view name_, raw_;
  bool there_ = false;
};

// Takes the wanted attributes of a tag.
template <typename... Values>
void TakeAttributes(std::string_view page, const Markup& tag, Values&... values) {
  AttributeReader attributes(page, tag.attributes);
  for (TagAttribute attribute; attributes.Next(attribute);) (void)(values.Take(attribute) || ...);
}

bool HasWord(std::string_view text, std::string_view lower_word) {
  for (std::string_view word = TakeHtmlWord(text); !word.empty(); word = TakeHtmlWord(text)) {
    if (EqualsIgnoreCase(word, lower_word)) return true;
  }
  return false;
}

// The URL in the content of <meta http-equiv=refresh>, by the standard's "shared declarative refresh steps"; empty
// where there is none.
std::string_view RefreshTarget(std::string_view content) {
  const auto pass_blanks = [&] {
    while (!content.empty() && IsHtmlBlank(content[0])) content.remove_prefix(1);
  };
  pass_blanks();
  if (content.empty() || (!IsDigit(content[0]) && content[0] != '.')) return {};
  while (!content.empty() && (IsDigit(content[0]) || content[0] == '.')) content.remove_prefix(1);
  if (content.empty() || (content[0] != ';' && content[0] != ',' && !IsHtmlBlank(content[0]))) return {};
  pass_blanks();
  if (!content.empty() && (content[0] == ';' || content[0] == ',')) content.remove_prefix(1);
  pass_blanks();
  if (StartsWithIgnoreCase(content, "url")) {
    std::string_view rest = TrimHtmlBlanks(content.substr(3));
    if (!rest.empty() && rest[0] == '=') content = TrimHtmlBlanks(rest.substr(1));
  }
  if (content.empty() || (content[0] != '"' && content[0] != '\'')) return content;
  const char quote = content[0];
  content.remove_prefix(1);
  return content.substr(0, content.find(quote));
}

// Finds where "hidden" and "style" come next, which tags need a closer look for.
class LookHints {
 public:
  explicit LookHints(std::string_view page) : page_(page) {}
  // Whether a tag in page[begin, end) may have one of the two attributes. Asked in the order of the page.
  bool Within(std::size_t begin, std::size_t end) {
    for (Word& word : words_) {
      if (word.next < begin) word.next = FindIgnoreCase(page_, word.text, begin);
    }
    return words_[0].next < end || words_[1].next < end;
  }

 private:
  struct Word {
    std::string_view text;
    std::size_t next;  // the first place at or behind which it has been looked for
  };
  std::string_view page_;
  Word words_[2] = {{"hidden", FindIgnoreCase(page_, "hidden")}, {"style", FindIgnoreCase(page_, "style")}};
};

// The names of a tag's attributes that came already. Of a tag with very many only the first ones are compared.
class NamesBefore {
 public:
  bool Repeats(std::string_view name) {
    for (std::size_t i = 0; i < count_; ++i) {
      if (EqualsIgnoreCase(names_[i], name)) return true;
    }
    if (count_ < names_.size()) names_[count_++] = name;
    return false;
  }

 private:
  std::array<std::string_view, 32> names_;
  std::size_t count_ = 0;
};

// The part of the walk that is about addresses. It takes every piece of the page in order, as long as a sign is ahead.
class AddressWalk {
 public:
  AddressWalk(std::string_view page, PageSignKind signs, AddressFinder& finder)
      : page_(page), finder_(finder), signs_(page, signs), runs_(page, finder) {
    if (signs_.next() == kNone) return;
    // Few pages say anything about how an element is shown.
    looks_matter_ = FindIgnoreCase(page, "hidden") != kNone || FindIgnoreCase(page, "display") != kNone ||
                    FindIgnoreCase(page, "-override") != kNone;
    if (looks_matter_) hints_.emplace(page);
  }

  // False when nothing more can be found.
  [[nodiscard]] bool Goes() const { return signs_.next() != kNone || runs_.has_sign(); }

  void Text(std::size_t begin, std::size_t end, bool has_references) {
    if (begin == end) return;
    const bool sign = signs_.PassBefore(end);
    if (!elements_.hidden()) runs_.Text(begin, end, has_references, sign);
  }

  void StartTag(const Markup& tag) {
    const bool reversed = elements_.reversed();
    ElementLook look;
    if (looks_matter_ && hints_->Within(tag.attributes, tag.end)) look = LookOf(tag);
    const bool sign = signs_.PassBefore(tag.end);
    if (sign) runs_.EndAtBlank(reversed);
    if (Has(tag.name, kInline))
      runs_.Joint(look.hidden);
    else
      runs_.End(reversed);
    if (looks_matter_) {
      elements_.Start(tag.name, NameOf(tag, 1), look, tag.foreign && tag.self_closing);
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
    if (looks_matter_) {
      elements_.End(tag.name, NameOf(tag, 2));
      if (elements_.reversed() != reversed) runs_.End(reversed);
    }
    signs_.PassBefore(tag.end);
  }

  void Comment(const Markup& comment) {
    const bool sign = signs_.PassBefore(comment.end);
    if (sign) runs_.EndAtBlank(elements_.reversed());
    runs_.Joint(false);
    if (sign) finder_.Comment(Inside(comment));
  }

  void RawText(const Markup& raw) {
    if (raw.name == TagName::kScript) {
      if (signs_.PassBefore(raw.end)) finder_.Script(Inside(raw));
    } else if (raw.name == TagName::kStyle) {
      signs_.PassBefore(raw.end);
    } else {
      Text(raw.inside, raw.inside_end, raw.name == TagName::kTitle || raw.name == TagName::kTextarea);
    }
  }

  void Declaration(const Markup& declaration) { signs_.PassBefore(declaration.end); }
  void End() { runs_.End(elements_.reversed()); }

 private:
  [[nodiscard]] std::string_view Inside(const Markup& markup) const {
    return page_.substr(markup.inside, markup.inside_end - markup.inside);
  }
  // `before` bytes stand between the tag's begin and its name.
  [[nodiscard]] std::string_view NameOf(const Markup& tag, std::size_t before) const {
    return page_.substr(tag.begin + before, tag.attributes - tag.begin - before);
  }

  [[nodiscard]] ElementLook LookOf(const Markup& tag) const {
    FirstValue hidden("hidden"), style("style");
    TakeAttributes(page_, tag, hidden, style);
    ElementLook look;
    if (style.there()) look = LookOfStyle(style.decoded());
    look.hidden = look.hidden || hidden.there();
    return look;
  }

  void Attributes(const Markup& tag) {
    NamesBefore names;
    AttributeReader attributes(page_, tag.attributes);
    for (TagAttribute attribute; attributes.Next(attribute);) {
      if (names.Repeats(attribute.name) || attribute.value.empty()) continue;
      const std::string_view value = Decoded(attribute.value, ReferencePlace::kAttribute, scratch_);
      const bool link = tag.name == TagName::kA || tag.name == TagName::kArea;
      if (link && EqualsIgnoreCase(attribute.name, "href") && IsMailto(value))
        finder_.Mailto(value);
      else if (EqualsIgnoreCase(attribute.name, "data-cfemail"))
        finder_.CfEmail(value);
      else
        finder_.Attribute(value);
    }
  }

  std::string_view page_;
  AddressFinder& finder_;
  PageSigns signs_;
  TextRuns runs_;
  OpenElements elements_;
  bool looks_matter_ = false;
  std::optional<LookHints> hints_;
  std::string scratch_;
};

PageSignKind SignsOf(const ReadRequest& request) {
  return request.count_protected || request.decode_protected ? PageSignKind::kAll : PageSignKind::kPlain;
}

// Whether a page's bytes show that it has no addresses, so that they need not be converted.
bool ShowsNone(const ReadRequest& request, Charset charset) {
  if (request.links || SignsOf(request) != PageSignKind::kPlain) return false;
  const bool as_ascii = charset != Charset::kUtf16Be && charset != Charset::kUtf16Le && charset != Charset::kIso2022Jp;
  return as_ascii && !MayHoldPlainAddress(request.body);
}

class PageWalk {
 public:
  PageWalk(std::string_view page, const ReadRequest& request, ReadResult& result)
      : page_(page), request_(request), result_(result), addresses_(page, SignsOf(request), *result.finder) {}

  void Run() {
    bool addresses = addresses_.Goes();
    if (!addresses && !request_.links) return;
    MarkupReader reader(page_);
    for (Markup markup;;) {
      reader.Next(markup, addresses ? MarkupReader::Wanted::kAll : MarkupReader::Wanted::kLinks);
      if (addresses) {
        addresses_.Text(markup.text_begin, markup.begin, true);
        ForAddresses(markup);
        addresses = addresses_.Goes();
      }
      if (markup.kind == Markup::Kind::kEnd) return;
      if (markup.kind == Markup::Kind::kStartTag)
        StartTag(markup);
      else if (markup.kind == Markup::Kind::kRawText && markup.name == TagName::kTitle && !result_.title)
        result_.title = ShownTitle(page_.substr(markup.inside, markup.inside_end - markup.inside));
      if (!addresses && !request_.links && IsDone(markup.begin)) return;
    }
  }

  // Whether nothing from this place on matters to who wants no links.
  [[nodiscard]] bool IsDone(std::size_t at) const {
    if (!result_.finder->HasAny()) return true;
    if (!result_.title && FindIgnoreCase(page_, "<title", at) != kNone) return false;
    return FindIgnoreCase(page_, "<meta", at) == kNone;
  }

  [[nodiscard]] const PageLinks& links() const { return links_; }
  // The href of the first <base> that has one, as it is written.
  [[nodiscard]] const std::optional<std::string>& base() const { return base_; }

 private:
  void ForAddresses(const Markup& markup) {
    switch (markup.kind) {
      case Markup::Kind::kStartTag:
        return addresses_.StartTag(markup);
      case Markup::Kind::kEndTag:
        return addresses_.EndTag(markup);
      case Markup::Kind::kComment:
        return addresses_.Comment(markup);
      case Markup::Kind::kDeclaration:
        return addresses_.Declaration(markup);
      case Markup::Kind::kCdata:
        return addresses_.Text(markup.inside, markup.inside_end, false);
      case Markup::Kind::kRawText:
        return addresses_.RawText(markup);
      case Markup::Kind::kEnd:
        return addresses_.End();
    }
  }

  void StartTag(const Markup& tag) {
    switch (tag.name) {
      case TagName::kA:
        return Anchor(tag, LinkSource::kA);
      case TagName::kArea:
        if (!tag.foreign) Anchor(tag, LinkSource::kArea);
        return;
      case TagName::kFrame:
      case TagName::kIframe:
        if (!tag.foreign) Frame(tag, tag.name == TagName::kFrame ? LinkSource::kFrame : LinkSource::kIframe);
        return;
      case TagName::kLink:
        if (!tag.foreign) Link(tag);
        return;
      case TagName::kBase:
        if (!tag.foreign) Base(tag);
        return;
      case TagName::kMeta:
        if (!tag.foreign) Meta(tag);
        return;
      default:
        return;
    }
  }

  void Anchor(const Markup& tag, LinkSource source) {
    if (!request_.links) return;
    FirstValue href("href"), rel("rel"), download("download");
    TakeAttributes(page_, tag, href, rel, download);
    if (!href.there()) return;
    const std::string_view content = source == LinkSource::kA ? page_.substr(tag.end) : std::string_view();
    links_.Add(href.raw(), source, FollowOf(rel, download), content);
  }

  void Frame(const Markup& tag, LinkSource source) {
    if (!request_.links) return;
    FirstValue src("src");
    TakeAttributes(page_, tag, src);
    if (src.there()) links_.Add(src.raw(), source, LinkFollow::kFollowed);
  }

  void Link(const Markup& tag) {
    if (!request_.links) return;
    FirstValue href("href"), rel("rel"), type("type"), download("download");
    TakeAttributes(page_, tag, href, rel, type, download);
    if (!href.there() || !rel.there()) return;
    const std::string words = rel.decoded();
    if (HasWord(words, "canonical"))
      links_.Add(href.raw(), LinkSource::kCanonical, FollowOf(rel, download));
    else if (HasWord(words, "next"))
      links_.Add(href.raw(), LinkSource::kNext, FollowOf(rel, download));
    else if (HasWord(words, "alternate") && !HasWord(words, "stylesheet") && IsHtmlOrNone(type))
      links_.Add(href.raw(), LinkSource::kAlternate, FollowOf(rel, download));
  }

  static bool IsHtmlOrNone(const FirstValue& type) {
    const std::string value = type.decoded();
    const std::string_view essence = TrimHtmlBlanks(std::string_view(value).substr(0, value.find(';')));
    return essence.empty() || EqualsIgnoreCase(essence, "text/html");
  }

  static LinkFollow FollowOf(const FirstValue& rel, const FirstValue& download) {
    if (download.there()) return LinkFollow::kNever;
    if (!rel.there()) return LinkFollow::kFollowed;
    const std::string words = rel.decoded();
    for (const std::string_view word : {"nofollow", "ugc", "sponsored"}) {
      if (HasWord(words, word)) return LinkFollow::kUnasked;
    }
    return LinkFollow::kFollowed;
  }

  void Base(const Markup& tag) {
    FirstValue href("href");
    if (base_) return;
    TakeAttributes(page_, tag, href);
    if (href.there()) base_ = href.decoded();
  }

  void Meta(const Markup& tag) {
    FirstValue name("name"), pragma("http-equiv"), content("content");
    TakeAttributes(page_, tag, name, pragma, content);
    if (!content.there()) return;
    if (IsRobotsName(name.decoded())) result_.robots.AddMeta(content.decoded());
    if (!request_.links || !EqualsIgnoreCase(pragma.decoded(), "refresh")) return;
    const std::string decoded = content.decoded();
    links_.AddDecoded(RefreshTarget(decoded), LinkSource::kRefresh, LinkFollow::kFollowed);
  }

  std::string_view page_;
  const ReadRequest& request_;
  ReadResult& result_;
  AddressWalk addresses_;
  PageLinks links_;
  std::optional<std::string> base_;
};

}  // namespace

ReadResult ReadPage(const ReadRequest& request, const Idna& idna, const TextDecoder& decoder) {
  ReadResult result;
  if (request.url != nullptr) result.base = request.url->href();
  for (const std::string& header : request.robots_headers) result.robots.AddHeader(header);
  const bool reserved_names = request.url != nullptr && MayHoldReservedNames(request.url->host());
  result.finder =
      std::make_unique<AddressFinder>(idna, AddressFinder::Settings{reserved_names, request.decode_protected});

  const Charset charset = request.body_is_utf8 ? Charset::kUtf8 : CharsetOfPage(request.body, request.content_type);
  if (ShowsNone(request, charset)) return result;
  std::string converted;
  const std::string_view page = PageAsUtf8(request.body, charset, decoder, converted);
  if (EqualsIgnoreCase(ParseContentType(request.content_type).type, "text/plain")) {
    if (PageSigns(page, SignsOf(request)).next() != kNone) result.finder->Text({page, {}, false, false});
  } else {
    PageWalk walk(page, request, result);
    walk.Run();
    std::optional<Url> base;
    if (walk.base()) base = ParseUrl(*walk.base(), request.url, idna);
    if (base) result.base = base->href();
    const LinkFollow at_most = result.robots.nofollow() ? LinkFollow::kUnasked : LinkFollow::kFollowed;
    result.links = walk.links().Resolve(base ? &*base : request.url, idna, at_most);
  }
  result.addresses = result.finder->Addresses();
  if (SignsOf(request) == PageSignKind::kAll) result.protected_addresses = result.finder->ProtectedCount();
  return result;
}

}  // namespace quenlar
