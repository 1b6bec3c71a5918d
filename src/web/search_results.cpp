#include "web/search_results.h"

#include "base/ascii.h"
#include "state/settings.h"

namespace quenlar {
namespace {

constexpr std::size_t kNone = std::string_view::npos;
constexpr std::string_view kHeading = "<h3 class=", kTarget = "href=\"";

// Returns the first match at or after `from`, or an empty view. Every gap of the pattern is as short as possible and
// may hold any text. So each piece stands at its first place behind the piece before it. When one piece is missing, it
// is missing behind every later heading as well.
std::string_view NextResult(std::string_view page, std::size_t from) {
  const std::size_t start = FindIgnoreCase(page, kHeading, from);
  if (start == kNone) return {};
  std::size_t at = start + kHeading.size();
  for (const std::string_view piece : {std::string_view("r"), std::string_view(">"), kTarget, std::string_view("\"")}) {
    at = FindIgnoreCase(page, piece, at);
    if (at == kNone) return {};
    at += piece.size();
  }
  return page.substr(start, at - start);
}

void QueueResult(std::string_view match, LinkQueue& level_zero) {
  // The target is read from the first "href=" of the whole match, which may stand before the one that the pattern
  // needed. Kept: CollectResultLinks.ReadsTheFirstTargetOfTheWholeMatch.
  std::string_view target = match.substr(FindIgnoreCase(match, kTarget) + kTarget.size());
  target.remove_suffix(1);
  if (target.find(kSearchEngineDomain) != kNone) return;
  // The site is looked up before the trailing slash is cut. The order makes a difference only for the bare "http://",
  // whose site changes with its slash. Kept: CollectResultLinks.TheSiteIsThatOfTheTargetBeforeItsSlashIsCut.
  if (level_zero.HasHost(target)) return;
  if (target.ends_with('/')) target.remove_suffix(1);
  level_zero.Append(target);
}

}  // namespace

void CollectResultLinks(std::string_view page, LinkQueue& level_zero) {
  std::size_t from = 0;
  for (;;) {
    const std::string_view match = NextResult(page, from);
    if (match.empty()) return;
    QueueResult(match, level_zero);
    from = static_cast<std::size_t>(match.data() - page.data()) + match.size();
  }
}

}  // namespace quenlar
