#include "web/links.h"

#include <algorithm>
#include <limits>

#include "base/ascii.h"
#include "base/letter_pairs.h"
#include "state/get_host.h"

namespace quenlar {
namespace {

constexpr std::size_t kNone = std::string_view::npos;
constexpr std::string_view kScheme = "http://";

// Whether the address is "http://" (in lower case) and a host, nothing else.
bool IsItsOwnHost(std::string_view address) {
  return address.starts_with(kScheme) && address.find('/', kScheme.size()) == kNone;
}

// Returns the part of the page's address behind which a relative target is put.
std::string FolderOf(std::string_view page) {
  constexpr std::string_view kHosted = "/hosted/";
  if (IsItsOwnHost(page)) return std::string(page) + "/";
  const std::size_t hosted = FindIgnoreCase(page, kHosted);
  if (hosted != kNone) return std::string(page.substr(0, hosted + kHosted.size()));
  const std::size_t slash = page.rfind('/');
  return std::string(page.substr(0, slash == kNone ? 0 : slash + 1));
}

// Appends a link to the queue of its level unless that queue has it, visited or not. Other levels are not asked.
bool QueueLink(Project& project, int level, std::string_view address, std::int16_t number) {
  return project.queues[static_cast<std::size_t>(level)].AddIfNew(address, number);
}

// Appends a link to another site to level 0, which holds one link of each site.
bool QueueOtherSite(Project& project, const Settings& settings, std::string_view address) {
  if (!project.IsKeywordProject && settings.CorrelationMode != 1) return false;
  return project.queues[0].AddIfNewHost(address, 1);
}

constexpr std::string_view kFragment = "/#", kSecureScheme = "https://", kMaker = "microsoft";

// Returns true when no rule can drop the address: it does not hold the pair of letters that each rule needs. False is
// not an answer; the rules themselves are asked then.
bool IsPlain(std::string_view address) {
  static_assert(kSecureScheme.find("s:") != kNone && kMaker.find("ft") != kNone);
  static_assert(std::string_view(kEncyclopediaDomain).find("ik") != kNone);
  return !MayHoldPair<LetterPair{'/', '#'}, LetterPair{'s', ':'}, LetterPair{'f', 't'}, LetterPair{'i', 'k'}>(address);
}

// Only pages of level 0 leave the encyclopedia out.
bool IsDropped(int level, std::string_view address) {
  return address.find(kFragment) != kNone || ContainsIgnoreCase(address, kSecureScheme) ||
         ContainsIgnoreCase(address, kMaker) || (level == 0 && ContainsIgnoreCase(address, kEncyclopediaDomain));
}

// 1 to 9 for "1" to "9", 10 for "0", 0 for anything else.
int LevelOfDigit(std::string_view digit) {
  if (digit.size() != 1 || !IsDigit(digit[0])) return 0;
  return digit[0] == '0' ? 10 : digit[0] - '0';
}

}  // namespace

std::string ResolveLink(std::string_view target, std::string_view page) {
  return std::string(LinkResolver(page).Resolve(target));
}

LinkResolver::LinkResolver(std::string_view page)
    : page_(std::string(page) + "/"), site_(GetHost(page)), root_(GetHost(page) + "/"), folder_(FolderOf(page)) {}

std::string_view LinkResolver::Resolve(std::string_view target) {
  constexpr std::string_view kUp = "../";
  bool up = false;
  while (target.starts_with(kUp)) {
    target.remove_prefix(kUp.size());
    up = true;
  }
  if (target.starts_with('/')) return site_.With(target);
  if (StartsWithIgnoreCase(target, "javascript:")) return {};
  // The result holds "/#", and every link builder drops what holds that. So a link to a place on its own page is never
  // followed: it would download the same page again. Kept: LinkBuilders.DropWhatIsNeverFollowed.
  if (target.starts_with('#')) return page_.With(target);
  if (StartsWithIgnoreCase(target, "mailto:")) return {};
  if (StartsWithIgnoreCase(target, kScheme)) {
    // A host alone gets the "/" behind it that every absolute address has.
    return target.find('/', kScheme.size()) == kNone ? bare_host_.assign(target).append("/") : target;
  }
  if (target.empty()) return {};
  // A target that begins with "../", once or several times, counts from the root of the site and not from the folder
  // above. Which pages a run visits depends on it. Kept: ResolveLink.MakesTargetsAbsolute.
  return up ? root_.With(target) : folder_.With(target);
}

std::optional<std::string_view> FollowedAddress(int level, std::string_view address) {
  if (!IsPlain(address) && IsDropped(level, address)) return std::nullopt;
  if (address.ends_with('/')) address.remove_suffix(1);
  return address;
}

bool QueueLink(Project& project, const Settings& settings, std::string_view address, std::string_view page,
               std::string_view level_digit) {
  const auto followed = FollowedAddress(0, address);
  if (!followed) {
    if (ContainsIgnoreCase(address, kSecureScheme)) ++project.secure_links;
    return false;
  }
  if (HostPart(*followed) != HostPart(page)) return QueueOtherSite(project, settings, *followed);
  const int level = LevelOfDigit(level_digit);
  return level != 0 && QueueLink(project, level, *followed, 1);
}

bool QueueExpandLink(Project& project, const Settings& settings, int level, std::string_view address,
                     std::string_view page, std::int16_t number) {
  const auto followed = FollowedAddress(level, address);
  if (!followed) return false;
  if (HostPart(*followed) != HostPart(page)) return QueueOtherSite(project, settings, *followed);
  const int next = std::min<int>(number + 1, std::numeric_limits<std::int16_t>::max());
  return QueueLink(project, level, *followed, static_cast<std::int16_t>(next));
}

}  // namespace quenlar
