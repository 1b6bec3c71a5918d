#include "engine/why.h"

#include <fmt/format.h>

#include "base/number.h"
#include "crawl/link_rules.h"
#include "engine/time_text.h"
#include "settings/suppression_list.h"

namespace quenlar {
namespace {

std::string Clicks(const PageFacts& page) { return Counted(static_cast<std::uint64_t>(page.depth), "click"); }
// The scope of the last run, as the crawl leaves it.
constexpr std::string_view kScopeFact = "option scope";

std::string ReasonSentence(const PageFacts& page) {
  if (page.state == "waiting") {
    return page.host_reason.empty() ? "It is still to be visited."
                                    : "It is still to be visited; of its host is known: " + page.host_reason + ".";
  }
  if (page.state == "moved") return "It redirects to " + page.moved_to + ".";
  if (page.state == "read") {
    std::string sentence = fmt::format("It was read on {} (status {}); it shows {}", TimeText(page.time), page.status,
                                       Counted(static_cast<std::uint64_t>(page.addresses), "address", "es"));
    if (page.protected_count > 0) sentence += fmt::format(", and {} that their owners hide", page.protected_count);
    if (page.filtered_count > 0) sentence += fmt::format("; the filters dropped {}", page.filtered_count);
    if (page.reason == "noindex") sentence += "; it asks not to be listed";
    if (page.reason == "nofollow") sentence += "; it asks that its links are not followed";
    if (page.reason == "same body") sentence += "; its links are not followed, as another page has the same text";
    return sentence + ".";
  }
  if (page.reason == "robots") {
    return fmt::format("It was not visited: robots.txt forbids it (line {}: {}).", page.line, page.rule);
  }
  if (page.reason == "depth") return "It was not visited: it is " + Clicks(page) + " from a start.";
  if (page.reason == "scope") return "It was not visited: it is out of scope.";
  if (page.reason == "private") return "It was not visited: a public page leads to a private address there.";
  if (page.reason == "suppressed") return "It leads to the address of a page that names a suppressed address.";
  if (page.reason == "address") return "It was not visited: it leads to an address that is too long.";
  if (page.reason == "trap") return "It was not visited: a part of its path repeats itself.";
  if (page.reason == "type") return fmt::format("It is not a page: its type is {}.", page.type);
  if (page.reason == "status") return fmt::format("It failed on {}: status {}.", TimeText(page.time), page.status);
  return fmt::format("It failed on {}: {}.", TimeText(page.time), page.reason);
}

// A page that the collection does not hold is out of scope, or was never linked.
Result<WhyAnswer> WhyNoPage(CollectionReader& reader, const Url& url) {
  const auto starts = reader.Starts();
  if (!starts.ok()) return starts.status();
  const Result<std::string> scope = reader.Fact(kScopeFact);
  if (!scope.ok()) return scope.status();
  const bool anywhere = scope.value() == std::to_string(static_cast<int>(CrawlScope::kAnywhere));
  const std::string site(SiteOf(url));
  WhyAnswer answer;
  for (const StartRow& start : starts.value()) {
    if (start.site != site && !anywhere) continue;
    answer.sentences = {"No link that is followed leads to " + url.href() + " .",
                        "Links marked nofollow, downloads and endings of no page are not followed."};
    return answer;
  }
  answer.definite = true;
  answer.sentences = {url.href(), "It was not visited: no start lies on its site."};
  answer.page = url.href();
  answer.state = "refused";
  answer.reason = "scope";
  return answer;
}

Result<WhyAnswer> WhyPage(CollectionReader& reader, const Url& url) {
  auto found = reader.Page(url);
  if (!found.ok()) return found.status();
  if (!found.value()) return WhyNoPage(reader, url);
  const PageFacts& page = *found.value();
  WhyAnswer answer;
  answer.definite = true;
  answer.sentences = {page.url, ReasonSentence(page)};
  answer.sentences.push_back(page.reason == kReadInArchive ? "An archive had it."
                             : page.parent.empty()
                                 ? "It is a start."
                                 : fmt::format("{} from a start; found on {} .", Clicks(page), page.parent));
  answer.page = page.url;
  answer.state = page.state;
  answer.reason = page.reason;
  answer.rule = page.rule;
  answer.facts = page;
  return answer;
}

WhyAnswer WhySuppressed(const std::string& address, const std::string& entry) {
  WhyAnswer answer;
  answer.definite = true;
  answer.sentences = {address, "It is not listed: the suppression list holds " + entry + "."};
  answer.address = address;
  answer.state = answer.reason = "suppressed";
  answer.rule = entry;
  return answer;
}

Result<WhyAnswer> WhyAddress(CollectionReader& reader, const std::string& address, std::size_t most_places) {
  WhyAnswer answer;
  std::vector<std::string> places;
  std::size_t count = 0, gone = 0;
  const Status listed = reader.SightingsOf(address, [&](const Sighting& row) {
    answer.address = row.address;
    ++count;
    if (row.gone) ++gone;
    if (places.size() < most_places) {
      places.push_back(
          fmt::format("{} ({}, {}{})", row.page, row.place, TimeText(row.first_seen), row.gone ? ", gone" : ""));
    }
    return true;
  });
  if (!listed.ok()) return listed;
  if (count == 0) {
    answer.sentences = {"The collection does not hold " + address + " .",
                        "No page that was read shows it, or it was left out: filters, noindex, protected."};
    return answer;
  }
  answer.definite = true;
  answer.state = count == gone ? "gone" : "listed";
  answer.sentences = {answer.address, count == gone
                                          ? "It is not listed: it does not stand on any page any more. It stood on:"
                                          : "It is listed: it stands in " + Counted(count - gone, "place") + "."};
  answer.sentences.insert(answer.sentences.end(), places.begin(), places.end());
  if (count > places.size()) answer.sentences.push_back(fmt::format("and {} more.", count - places.size()));
  return answer;
}

bool HasScheme(std::string_view what) { return what.find("//") != std::string_view::npos; }

}  // namespace

bool AsksForAddress(std::string_view what) { return !HasScheme(what) && what.find('@') != std::string_view::npos; }

Result<WhyAnswer> Why(CollectionReader& reader, const SuppressionList& suppression, const Idna& idna,
                      const std::string& what, std::size_t most_places) {
  if (AsksForAddress(what)) {
    const std::string address = SuppressionEntry(what, idna).value_or(what);
    if (const auto entry = suppression.EntryFor(address)) return WhySuppressed(address, *entry);
    return WhyAddress(reader, address, most_places);
  }
  const auto url = ParseUrl(HasScheme(what) ? what : "https://" + what, nullptr, idna);
  if (url) return WhyPage(reader, *url);
  WhyAnswer answer;
  answer.sentences = {what + ": this is not a web address."};
  return answer;
}

}  // namespace quenlar
