#include "page/page_reader.h"

#include <algorithm>

#include "base/ascii.h"
#include "page/address_walk.h"
#include "page/charset.h"
#include "page/html_blanks.h"
#include "page/markup_reader.h"
#include "page/page_signs.h"
#include "page/page_title.h"
#include "page/tag_values.h"

namespace quenlar {
namespace {

constexpr std::size_t kNone = std::string_view::npos;

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

PageSignKind SignsOf(const ReadRequest& request) {
  return request.count_protected || request.decode_protected ? PageSignKind::kAll : PageSignKind::kPlain;
}

// Whether a page's bytes show that it has no addresses, so that they need not be converted.
bool ShowsNone(const ReadRequest& request) {
  if (request.links || SignsOf(request) != PageSignKind::kPlain || MayHoldPlainAddress(request.body)) return false;
  return request.body_is_utf8 || !MayNotBeAscii(request.body, request.content_type);
}

class PageWalk {
 public:
  PageWalk(std::string_view page, const ReadRequest& request, ReadResult& result)
      : page_(page),
        request_(request),
        result_(result),
        addresses_(page, SignsOf(request), *result.finder),
        reader_(page, request.links) {}

  void Run() {
    if (!addresses_.Goes() && !request_.links) return;
    for (Markup markup; Next(markup);) {
      if (!addresses_.Goes() && !request_.links && IsDone(markup.begin)) return;
    }
  }

  // Whether nothing from this place on matters to who wants no links. Asked in the order of the page.
  [[nodiscard]] bool IsDone(std::size_t at) {
    if (!result_.finder->HasAny()) return true;
    if (next_meta_ < at) next_meta_ = FindIgnoreCase(page_, "<meta", at);
    if (next_meta_ != kNone || result_.title) return next_meta_ == kNone;
    if (next_title_ < at) next_title_ = FindIgnoreCase(page_, "<title", at);
    return next_title_ == kNone;
  }

  [[nodiscard]] const PageLinks& links() const { return links_; }
  // The href of the first <base> that has one, as it is written.
  [[nodiscard]] const std::optional<std::string>& base() const { return base_; }

 private:
  // Reads the next markup. False at the end of the page.
  bool Next(Markup& markup) {
    if (!addresses_.Goes()) {
      reader_.Next(markup, kNone);
    } else {
      const std::size_t passable = PassableTo();
      reader_.Next(markup, passable);
      if (passable == 0) {
        passes_ = false;
        ForAddresses(markup);
      } else if (markup.end > passable || reader_.InForeign()) {
        // Something for addresses has come. It is read from the beginning of its run.
        reader_.GoBack();
        passes_ = false;
        all_to_ = markup.end > passable ? passable : markup.begin;
        seen_to_ = std::max(seen_to_, markup.begin);
        return true;
      } else if (markup.kind == Markup::Kind::kStartTag && !Has(markup.name, kInline)) {
        reader_.MarkPlace(markup.begin);
      }
    }
    if (markup.kind == Markup::Kind::kEnd) return false;
    if (markup.begin < seen_to_) return true;
    if (markup.kind == Markup::Kind::kStartTag)
      StartTag(markup);
    else if (markup.kind == Markup::Kind::kRawText && markup.name == TagName::kTitle && !result_.title)
      result_.title = ShownTitle(page_.substr(markup.inside, markup.inside_end - markup.inside));
    return true;
  }

  // The place up to which tags that do not matter for links may be passed over; 0 for none. Short stretches are not
  // worth it.
  std::size_t PassableTo() {
    constexpr std::size_t kShort = 128;
    if (reader_.at() <= all_to_ || reader_.InForeign()) return 0;
    const std::size_t passable = addresses_.PassableTo(reader_.at());
    if (!passes_) {
      if (passable < reader_.at() + kShort || reader_.InRawText()) return 0;
      passes_ = true;
      reader_.MarkPlace(reader_.at());
    }
    return passable;
  }

  void ForAddresses(const Markup& markup) {
    addresses_.Text(markup.text_begin, markup.begin, true);
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
  MarkupReader reader_;
  bool passes_ = false;                         // tags are being passed over
  std::size_t all_to_ = 0;                      // up to here nothing is passed over
  std::size_t seen_to_ = 0;                     // markup that begins before has had its part in all but addresses
  std::size_t next_meta_ = 0, next_title_ = 0;  // the first ones at or behind a place that was asked about
  PageLinks links_;
  std::optional<std::string> base_;
};

}  // namespace

ReadResult ReadPage(const ReadRequest& request, const Idna& idna, const TextDecoder& decoder) {
  ReadResult result;
  for (const std::string& header : request.robots_headers) result.robots.AddHeader(header);
  if (ShowsNone(request)) return result;
  if (request.url != nullptr) result.base = request.url->href();
  const bool reserved_names = request.url != nullptr && MayHoldReservedNames(request.url->host());
  result.finder =
      std::make_unique<AddressFinder>(idna, AddressFinder::Settings{reserved_names, request.decode_protected});

  const Charset charset = request.body_is_utf8 ? Charset::kUtf8 : CharsetOfPage(request.body, request.content_type);
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
