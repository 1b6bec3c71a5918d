#include "web/links.h"

#include <algorithm>
#include <limits>

#include "base/ascii.h"
#include "base/byte_search.h"
#include "state/get_host.h"

namespace quenlar {
namespace {

constexpr std::size_t kNone = std::string_view::npos;
constexpr std::string_view kScheme = "http://";

// Whether the address is "http://" (in lower case) and a host, nothing else.
bool IsItsOwnHost(std::string_view address) {
  return address.starts_with(kScheme) && address.find('/', kScheme.size()) == kNone;
}

// The part of the page's address that a relative target is put behind.
std::string FolderOf(std::string_view page) {
  constexpr std::string_view kHosted = "/hosted/";
  if (IsItsOwnHost(page)) return std::string(page) + "/";
  const std::size_t hosted = FindIgnoreCase(page, kHosted);
  if (hosted != kNone) return std::string(page.substr(0, hosted + kHosted.size()));
  const std::size_t slash = page.rfind('/');
  return std::string(page.substr(0, slash == kNone ? 0 : slash + 1));
}

// Puts a link at the end of its level's queue, once. Visited links count too, other levels do not.
bool QueueLink(Project& project, int level, std::string_view address, std::int16_t number) {
  return project.queues[static_cast<std::size_t>(level)].AddIfNew(address, number);
}

// Another site: one entry a site, in level 0.
bool QueueOtherSite(Project& project, const Settings& settings, std::string_view address) {
  if (!project.IsKeywordProject && settings.CorrelationMode != 1) return false;
  return project.queues[0].AddIfNewHost(address, 1);
}

// Whether the lower-cased address holds "https://". Nearly every address has one ":", so that is looked for.
bool HoldsSecureScheme(std::string_view address) {
  constexpr std::string_view kSecure = "https://";
  for (std::size_t colon = FindByte(address, ':'); colon != kNone; colon = FindByte(address, ':', colon + 1)) {
    if (colon >= 5 && StartsWithIgnoreCase(address.substr(colon - 5), kSecure)) return true;
  }
  return false;
}

// Whether the address holds "/#". A "/" stands in every address, a "#" in few.
bool HoldsFragment(std::string_view address) {
  for (std::size_t at = FindByte(address, '#'); at != kNone; at = FindByte(address, '#', at + 1)) {
    if (at > 0 && address[at - 1] == '/') return true;
  }
  return false;
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

std::string_view LinkResolver::Resolve(std::string_view target) {
  constexpr std::string_view kUp = "../";
  bool up = false;
  while (target.starts_with(kUp)) {
    target.remove_prefix(kUp.size());
    up = true;
  }
  if (target.starts_with('/')) return Joined(kScheme, HostPart(page_), target);
  if (StartsWithIgnoreCase(target, "javascript:")) return {};
  // The result holds "/#", so every link builder drops it: fragments are never followed, and that is meant.
  if (target.starts_with('#')) return Joined(page_, "/", target);
  if (StartsWithIgnoreCase(target, "mailto:")) return {};
  if (StartsWithIgnoreCase(target, kScheme)) {
    // It has a "/" behind its host at least.
    return target.find('/', kScheme.size()) == kNone ? Joined(target, "/", {}) : target;
  }
  if (target.empty()) return {};
  // One "../" or many: the target counts from the root of the site.
  if (up) {
    (void)Joined(kScheme, HostPart(page_), "/");
    return joined_.append(target);
  }
  return Joined(Folder(), {}, target);
}

std::string_view LinkResolver::Joined(std::string_view front, std::string_view middle, std::string_view target) {
  joined_.assign(front).append(middle).append(target);
  return joined_;
}

std::string_view LinkResolver::Folder() {
  if (!folder_) folder_ = FolderOf(page_);
  return *folder_;
}

std::optional<std::string_view> FollowedAddress(int level, std::string_view address) {
  if (HoldsFragment(address) || HoldsSecureScheme(address) || ContainsIgnoreCase(address, "microsoft")) {
    return std::nullopt;
  }
  // Only pages of level 0 leave the encyclopedia out.
  if (level == 0 && ContainsIgnoreCase(address, kEncyclopediaDomain)) return std::nullopt;
  if (address.ends_with('/')) address.remove_suffix(1);
  return address;
}

bool MakeLink(Project& project, const Settings& settings, std::string_view address, std::string_view page,
              std::string_view level_digit) {
  const auto followed = FollowedAddress(0, address);
  if (!followed) return false;
  if (HostPart(*followed) != HostPart(page)) return QueueOtherSite(project, settings, *followed);
  const int level = LevelOfDigit(level_digit);
  return level != 0 && QueueLink(project, level, *followed, 1);
}

bool MakeExpandLink(Project& project, const Settings& settings, int level, std::string_view address,
                    std::string_view page, std::int16_t number) {
  const auto followed = FollowedAddress(level, address);
  if (!followed) return false;
  if (HostPart(*followed) != HostPart(page)) return QueueOtherSite(project, settings, *followed);
  const int next = std::min<int>(number + 1, std::numeric_limits<std::int16_t>::max());
  return QueueLink(project, level, *followed, static_cast<std::int16_t>(next));
}

}  // namespace quenlar
