#include "web/page_analysis.h"

#include <array>
#include <cstdint>
#include <optional>
#include <string>

#include "base/ascii.h"
#include "base/byte_search.h"
#include "state/link_queue.h"
#include "web/links.h"
#include "web/tag_scanner.h"
#include "web/tag_text.h"

namespace quenlar {
namespace {

constexpr std::size_t kNone = std::string_view::npos;

// What stands between "Parsing" or "Completed" and the rest of the stage text. Levels 7 to 10 show the words of level
// 5; texts that users read stay as they know them.
// Kept: PageAnalysis.AnExpansionPageBelowTheLinkDepthIsFollowedOnItsOwnLevel.
constexpr std::array<const char*, kLevels> kStageWords = {
    "",
    " Channel One",
    " Channel Two",
    " Channel Three",
    " Channel Four",
    " Channel Five",
    " Channel Six",
    " Channel Five",
    " Channel Five",
    " Channel Five",
    " Channel Five",
};

constexpr std::uint32_t Four(std::string_view text) {
  std::uint32_t value = 0;
  for (const char c : text) value = value << 8 | static_cast<unsigned char>(ToLower(c));
  return value;
}

// Returns whether the target names a kind of file that is never downloaded, such as a picture.
bool IsUnwantedFile(std::string_view target) {
  if (target.size() < 4) return false;
  switch (Four(target.substr(target.size() - 4))) {
    case Four(".gif"):
    case Four(".jpg"):
    case Four("jpeg"):
    case Four(".bmp"):
    case Four(".png"):
    case Four(".pcx"):
    case Four(".tif"):
    case Four("tiff"):
    case Four(".wmf"):
    case Four(".exe"):
    case Four(".zip"):
    case Four(".pdf"):
    case Four(".doc"):
    case Four(".avi"):
    case Four(".mpg"):
    case Four("mpeg"):
    case Four(".wmv"):
    case Four("rmvb"):
    case Four(".mp3"):
    case Four(".wav"):
      return true;
    default:
      return false;
  }
}

// Whether the tag's name is `name` (in lower case) exactly: it ends at a blank, which may be written as an entity, or
// with the tag. Any other character makes it another tag, even a line break, so "<a" at the end of a line is not an
// anchor. Which links a page has decides the whole run, and runs are compared page by page.
// Kept: PageAnalysis.KnowsATagByItsExactName.
bool IsNamed(std::string_view tag, std::string_view name) {
  if (!StartsWithIgnoreCase(tag, name)) return false;
  tag.remove_prefix(name.size());
  return tag.empty() || tag.front() == ' ' || StartsWithIgnoreCase(tag, "&nbsp;");
}

// Returns the position of the last closing anchor of the page, or npos. Every text that begins with "</a" counts as
// one.
std::size_t LastClosingAnchor(std::string_view page) {
  std::size_t at = page.size();
  do {
    at = FindLastByte(page, '<', 0, at);
  } while (at != kNone && !StartsWithIgnoreCase(page.substr(at), "</a"));
  return at;
}

// The page whose links are queued, and the queue to which they go.
struct PageKind {
  int level;
  std::string_view address;
  std::string_view digit;  // of a level-0 page
  std::int16_t number;     // of an expansion page
};

// Goes through the tags of a page and queues the targets of its anchors and frames.
class TagWalk {
 public:
  TagWalk(AnalysisContext& context, std::string_view page, const PageKind& kind)
      : context_(context), page_(page), kind_(kind), resolver_(kind.address) {}
  TagWalk(const TagWalk&) = delete;
  TagWalk& operator=(const TagWalk&) = delete;

  // Walks through all tags. Pumps at each. Returns false when a stop request has ended the walk early.
  bool Run() {
    bool cut_short = false;
    const auto passed = [&](std::size_t first, std::uint64_t tags) {
      context_.pump.Light(tags);
      if (!context_.run.stop_requested) return true;
      cut_short = FindByte(page_, '>', first) != kNone;  // a tag without ">" does not count
      return false;
    };
    TagScanner tags(page_);
    for (TagScanner::Tag tag{}; tags.Next(tag, passed) && Look(tag);) {
    }
    return !cut_short;
  }

 private:
  // Handles one tag. Returns false when the walk must end.
  bool Look(TagScanner::Tag tag) {
    const std::string_view text = TrimBlanks(page_.substr(tag.open + 1, tag.close - tag.open - 1));
    if (IsNamed(text, "a")) return Anchor(text, tag.close);
    if (IsNamed(text, "frame")) {
      context_.pump();
      Queue(AttributeView(text, "src=", buffer_));
    }
    return true;
  }

  // An anchor without a closing tag anywhere behind it ends the walk: no later link of the page is queued. The page is
  // still harvested whole. Kept: PageAnalysis.AnAnchorWithoutAClosingTagBehindItEndsTheWalk.
  bool Anchor(std::string_view text, std::size_t close) {
    context_.pump();
    if (!last_closing_) last_closing_ = LastClosingAnchor(page_);
    if (*last_closing_ == kNone || *last_closing_ < close) return false;
    const std::string_view target = AttributeView(text, "href=", buffer_);
    if (!IsUnwantedFile(target)) Queue(target);
    return true;
  }

  void Queue(std::string_view target) {
    if (target.starts_with('#')) return;  // it would be dropped after it is resolved
    const std::string_view address = resolver_.Resolve(target);
    if (address.empty()) return;
    if (kind_.level == 0) {
      QueueLink(context_.project, context_.settings, address, kind_.address, kind_.digit);
    } else {
      QueueExpandLink(context_.project, context_.settings, kind_.level, address, kind_.address, kind_.number);
    }
  }

  AnalysisContext& context_;
  std::string_view page_;
  const PageKind& kind_;
  LinkResolver resolver_;
  std::string buffer_;
  std::optional<std::size_t> last_closing_;  // looked for at the first anchor
};

PageKind KindOf(std::string_view request_name) {
  PageKind kind{LevelOfLetter(request_name.empty() ? '\0' : request_name.front()), {}, {}, 0};
  if (request_name.size() > 1) kind.digit = request_name.substr(1, 1);
  if (request_name.size() > 2) kind.address = request_name.substr(2);
  if (!kind.digit.empty() && IsDigit(kind.digit[0])) kind.number = static_cast<std::int16_t>(kind.digit[0] - '0');
  return kind;
}

}  // namespace

int LevelOfLetter(char letter) {
  for (int level = 0; level < kLevels; ++level) {
    if (RequestLetter(level) == letter) return level;
  }
  return -1;
}

PageOutcome ParsePage(AnalysisContext& context, std::string_view page, std::string_view request_name) {
  const PageKind kind = KindOf(request_name);
  if (kind.level < 0) return {};
  ++context.run.ScanCount;
  context.view.ShowScanCount(context.run.ScanCount);
  PageOutcome outcome{true, ExtractAddresses(context, page, kind.address) == HarvestEnd::kStopNumberReached};
  if (kind.level > 0 && kind.number >= context.run.LinkDepth) return outcome;

  const std::string words = kStageWords[static_cast<std::size_t>(kind.level)];
  context.view.ShowStage("Parsing" + words + " data ...");
  if (!TagWalk(context, page, kind).Run()) return {false, true};
  context.view.ShowStage("Completed" + words + " analysis ...");
  return outcome;
}

}  // namespace quenlar
