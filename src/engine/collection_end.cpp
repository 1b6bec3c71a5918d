#include "engine/collection_end.h"

#include <algorithm>

#include "base/number.h"
#include "run/end_reasons.h"

namespace quenlar {
namespace {

constexpr const char* kLineEnd = "\r\n";
constexpr std::size_t kMostNotices = 12;

std::string Reason(const CollectionEnd& end) {
  if (!end.status.ok()) return SentenceOf(end.status);
  switch (end.end) {
    case CrawlEnd::kFinished:
    case CrawlEnd::kNothingToDo:
      return kEndAllParsed;
    case CrawlEnd::kStopped:
      return kEndStopButton;
    case CrawlEnd::kOffLine:
      return kEndOffLine;
    case CrawlEnd::kPages:
    case CrawlEnd::kAddresses:
    case CrawlEnd::kMinutes:
      return kEndStopNumber;
    case CrawlEnd::kFailed:
      break;
  }
  return "None of the starts could be visited !";
}

// Why pages of the collection were not visited, in the words of a person. Empty for a reason that is of no interest.
std::string RefusalText(const Refusals& refused, const WebSettings& settings) {
  const auto pages = static_cast<std::uint64_t>(refused.pages);
  if (refused.reason == kRefusedRobots) return Counted(pages, "page") + " that robots.txt keeps programs away from";
  if (refused.reason == kRefusedDepth) {
    return Counted(pages, "page") + " more than " + Counted(static_cast<std::uint64_t>(settings.depth), "click") +
           " away from a start";
  }
  if (refused.reason == kRefusedScope) return Counted(pages, "page") + " outside of what links may lead to";
  if (refused.reason == kRefusedPrivate)
    return Counted(pages, "page") + " of private places that a public page leads to";
  if (refused.reason == "trap") return Counted(pages, "page") + " whose path repeats itself";
  return {};
}

std::vector<std::string> LeftOut(const CollectionEnd& end, const WebSettings& settings) {
  std::vector<std::string> lines;
  for (const Refusals& refused : end.refusals) {
    if (std::string line = RefusalText(refused, settings); !line.empty()) lines.push_back(std::move(line));
  }
  const CrawlFigures& figures = end.figures;
  if ((end.end == CrawlEnd::kFinished || end.end == CrawlEnd::kNothingToDo) && end.left > 0) {
    lines.push_back(Counted(static_cast<std::uint64_t>(end.left), "page") + " of hosts that have had their " +
                    Counted(static_cast<std::uint64_t>(settings.pages_per_host), "page") + " or do not answer for now");
  }
  if (figures.failed > 0) lines.push_back(Counted(figures.failed, "page") + " that could not be read");
  if (figures.protected_count > 0 && settings.list_protected == 0) {
    const char* const hidden = figures.protected_count == 1 ? " that its owner hides" : " that their owners hide";
    lines.push_back(Counted(figures.protected_count, "address", "es") + hidden + " from programs");
  }
  if (figures.suppressed > 0)
    lines.push_back(Counted(figures.suppressed, "address", "es") + " that the suppression list holds");
  if (figures.filtered > 0) lines.push_back(Counted(figures.filtered, "address", "es") + " that the filters drop");
  return lines;
}

std::string_view WithoutScheme(std::string_view origin) {
  const std::size_t slashes = origin.find("//");
  return slashes == std::string_view::npos ? origin : origin.substr(slashes + 2);
}

std::string Seconds(double seconds) {
  const auto tenths = static_cast<std::int64_t>(seconds * 10 + 0.999);
  return std::to_string(tenths / 10) + "." + std::to_string(tenths % 10) + " s";
}

}  // namespace

std::string EndText(const CollectionEnd& end, const WebSettings& settings) {
  std::string text = Reason(end);
  const CrawlFigures& figures = end.figures;
  if (!end.opened) return text;
  text += std::string(kLineEnd) + kLineEnd + Counted(figures.fresh, "new address", "es") + " on " +
          Counted(figures.pages, "page") + ". The collection has " +
          Counted(static_cast<std::uint64_t>(end.addresses), "address", "es") + ", and " +
          Counted(static_cast<std::uint64_t>(end.left), "page") + " left to visit.";
  if (const auto lines = LeftOut(end, settings); !lines.empty()) {
    text += std::string(kLineEnd) + kLineEnd + "Left out:";
    for (const std::string& line : lines) text += kLineEnd + line;
  }
  if (!end.notices.empty()) text += kLineEnd;
  for (std::size_t i = 0; i < std::min(end.notices.size(), kMostNotices); ++i) {
    text += kLineEnd + end.notices[i] + ".";
  }
  if (end.notices.size() > kMostNotices) {
    text += kLineEnd + ("and " + std::to_string(end.notices.size() - kMostNotices)) + " more.";
  }
  return text;
}

std::string StageText(const CollectionMoment& moment) {
  const std::string rest = ", " + Counted(moment.hosts, "host") + " under way, " +
                           Counted(static_cast<std::uint64_t>(std::max<std::int64_t>(moment.left, 0)), "page") +
                           " left";
  if (!moment.waiting_for.empty()) return "Nothing else is left: " + moment.waiting_for;
  if (moment.asked) {
    return "Reading " + std::string(WithoutScheme(moment.asked->origin)) + " (" + Seconds(moment.asked->seconds) + ")" +
           rest;
  }
  if (moment.pausing) {
    return "Pause of " + Seconds(moment.pausing->seconds) + " before the next page of " +
           std::string(WithoutScheme(moment.pausing->origin)) + rest;
  }
  return "Looking for pages" + rest;
}

}  // namespace quenlar
