// The links of a page, each once.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "base/text_arena.h"
#include "base/text_hash.h"
#include "page/url.h"
#include "platform/idna.h"
#include "platform/index_table.h"

namespace quenlar {

enum class LinkSource : std::uint8_t { kA, kArea, kFrame, kIframe, kRefresh, kCanonical, kNext, kAlternate };

// As the request `read` of `quenlar analyze` spells it.
[[nodiscard]] std::string_view LinkSourceName(LinkSource source);

enum class LinkFollow : std::uint8_t {
  kNever,    // it is a download
  kUnasked,  // the page asks programs not to follow it
  kFollowed,
};

struct PageLink {
  std::string url;  // as Url::href()
  LinkSource from = LinkSource::kA;
  LinkFollow follow = LinkFollow::kFollowed;
  // What a person reads at the first few <a> that show different texts, a line for each: UTF-8, their beginnings,
  // blanks run together.
  std::string text;
};

// Takes the targets of a page in order and makes URLs of them at its end, when it is known what they are relative to.
// The same target is looked at once, however often the page has it.
class PageLinks {
 public:
  // A target as the page writes it, references not decoded. `content` is the markup from the end of the tag on, where a
  // link's text may stand; empty where it has none. The memory of both must stay as it is until Resolve.
  void Add(std::string_view raw_target, LinkSource source, LinkFollow follow, std::string_view content = {});
  // A target whose references are decoded; it is copied.
  void AddDecoded(std::string_view target, LinkSource source, LinkFollow follow) {
    Add(target, true, source, follow, {});
  }

  // The links in the order of the page, each URL once: from where it comes first, followed as far as any of its targets
  // may be, but no further than `at_most`. Left out: what is empty or begins with "#", what is not an http or https
  // URL, URLs that are too long for a page, and endings that name no page (but for <link rel=canonical> and refresh).
  [[nodiscard]] std::vector<PageLink> Resolve(const Url* base, const Idna& idna, LinkFollow at_most) const;

 private:
  void Add(std::string_view text, bool copy, LinkSource source, LinkFollow follow, std::string_view content);

  struct Target {
    std::string_view text;  // references decoded, without its fragment and the blanks around
    LinkSource source;
    LinkFollow follow;
    std::uint32_t content = IndexTable::kNone;  // the first of its contents, by number
  };
  // What stands in an <a> that shows a text.
  struct Content {
    std::string_view markup;
    std::uint32_t next = IndexTable::kNone;  // of the same target
  };

  void AddContent(Target& target, std::string_view content);
  // Adds the texts of a target to those of its link.
  void AddTexts(const Target& target, std::string& text) const;

  TextHash hash_;
  IndexTable index_;
  std::vector<Target> targets_;
  std::vector<Content> contents_;
  TextArena decoded_;
  std::string scratch_;
};

}  // namespace quenlar
