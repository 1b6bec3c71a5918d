// quenlar why: why an address is (or is not) listed, or a page was (not) visited.
#include <optional>
#include <string>
#include <vector>

#include <fmt/format.h>

#include "cli/commands.h"
#include "cli/exit_status.h"
#include "cli/json_text.h"
#include "cli/open_collection.h"
#include "cli/time_text.h"
#include "cli/workplace.h"
#include "crawl/link_rules.h"
#include "platform/platform.h"

namespace quenlar {
namespace {

constexpr std::size_t kMostPlaces = 20;  // of an address that are printed as sentences

// The first sentence, then one a line.
int TellSentences(Invocation& invocation, const std::vector<std::string>& sentences) {
  for (const std::string& sentence : sentences) {
    if (!invocation.Print(sentence)) break;
  }
  return kExitDone;
}

int TellFacts(Invocation& invocation, const Json& facts) {
  std::string line = JsonLine(facts);
  line.pop_back();  // Print adds it
  invocation.Print(line);
  return kExitDone;
}

std::string ReasonSentence(const PageFacts& page) {
  if (page.state == "waiting") return "It is still to be visited.";
  if (page.state == "moved") return "It redirects to " + page.moved_to + ".";
  if (page.state == "read") {
    std::string sentence = fmt::format("It was read on {} (status {}); it shows {} addresses", TimeText(page.time),
                                       page.status, page.addresses);
    if (page.protected_count > 0) sentence += fmt::format(", and {} that their owners hide", page.protected_count);
    if (page.filtered_count > 0) sentence += fmt::format("; the filters dropped {}", page.filtered_count);
    return sentence + ".";
  }
  if (page.reason == "robots") {
    return fmt::format("It was not visited: robots.txt forbids it (line {}: {}).", page.line, page.rule);
  }
  if (page.reason == "depth") return fmt::format("It was not visited: it is {} clicks from a start.", page.depth);
  if (page.reason == "scope") return "It was not visited: it is out of scope.";
  if (page.reason == "private") return "It was not visited: a public page leads to a private address there.";
  if (page.reason == "trap") return "It was not visited: a part of its path repeats itself.";
  if (page.reason == "type") return fmt::format("It is not a page: its type is {}.", page.type);
  if (page.reason == "status") return fmt::format("It failed on {}: status {}.", TimeText(page.time), page.status);
  return fmt::format("It failed on {}: {}.", TimeText(page.time), page.reason);
}

Json PageJson(const PageFacts& page) {
  Json line = {{"page", page.url}, {"state", page.state}, {"depth", page.depth}};
  if (!page.reason.empty()) line["reason"] = page.reason;
  if (!page.rule.empty()) line["rule"] = page.rule;
  if (page.line > 0) line["line"] = page.line;
  if (page.status > 0) line["status"] = page.status;
  if (!page.parent.empty()) line["parent"] = page.parent;
  return line;
}

// A page that the collection does not hold is out of scope, or was never linked.
int WhyNoPage(Invocation& invocation, CollectionReader& reader, const Url& url, bool as_json) {
  const auto starts = reader.Starts();
  if (!starts.ok()) return invocation.Fail(starts.status());
  const std::string site(SiteOf(url));
  for (const StartRow& start : starts.value()) {
    if (start.site != site) continue;
    invocation.Say("No page that was read links to " + url.href() + " .");
    return kExitFailed;
  }
  if (as_json) return TellFacts(invocation, {{"page", url.href()}, {"state", "refused"}, {"reason", "scope"}});
  return TellSentences(invocation, {url.href(), "It was not visited: no start lies on its site."});
}

int WhyPage(Invocation& invocation, CollectionReader& reader, const Url& url, bool as_json) {
  const auto found = reader.Page(url);
  if (!found.ok()) return invocation.Fail(found.status());
  if (!found.value()) return WhyNoPage(invocation, reader, url, as_json);
  const PageFacts& page = *found.value();
  if (as_json) return TellFacts(invocation, PageJson(page));
  std::vector<std::string> sentences = {page.url, ReasonSentence(page)};
  sentences.push_back(page.parent.empty()
                          ? "It is a start."
                          : fmt::format("{} clicks from a start; found on {} .", page.depth, page.parent));
  return TellSentences(invocation, sentences);
}

int WhyAddress(Invocation& invocation, CollectionReader& reader, const std::string& address, bool as_json) {
  std::vector<std::string> places;
  std::string spelling;
  std::size_t count = 0, gone = 0;
  const Status listed = reader.SightingsOf(address, [&](const Sighting& row) {
    spelling = row.address;
    ++count;
    if (row.gone) ++gone;
    if (places.size() < kMostPlaces) {
      places.push_back(
          fmt::format("{} ({}, {}{})", row.page, row.place, TimeText(row.first_seen), row.gone ? ", gone" : ""));
    }
    return true;
  });
  if (!listed.ok()) return invocation.Fail(listed);
  if (count == 0) {
    invocation.Say("No page that was read shows " + address + " .");
    return kExitFailed;
  }
  if (as_json) return TellFacts(invocation, {{"address", spelling}, {"state", count == gone ? "gone" : "listed"}});
  std::vector<std::string> sentences = {
      spelling, count == gone ? "It is not listed: it does not stand on any page any more. It stood on:"
                              : fmt::format("It is listed: it stands in {} places.", count - gone)};
  sentences.insert(sentences.end(), places.begin(), places.end());
  if (count > places.size()) sentences.push_back(fmt::format("and {} more.", count - places.size()));
  return TellSentences(invocation, sentences);
}

}  // namespace

int Why(Invocation& invocation, const WhyArguments& arguments) {
  const auto reader = OpenCollection(invocation, arguments.name);
  if (!reader.ok()) return invocation.Fail(reader.status());
  const bool as_json = arguments.format == "jsonl";
  const bool is_page = arguments.what.find("//") != std::string::npos || arguments.what.find('@') == std::string::npos;
  if (!is_page) return WhyAddress(invocation, *reader.value(), arguments.what, as_json);
  const Result<Platform> platform = OpenHome(invocation);
  if (!platform.ok()) return invocation.Fail(platform.status());
  const bool has_scheme = arguments.what.find("//") != std::string::npos;
  const auto url = ParseUrl(has_scheme ? arguments.what : "https://" + arguments.what, nullptr, platform.value().idna);
  if (!url) {
    invocation.Say(arguments.what + ": this is not a web address.");
    return kExitFailed;
  }
  return WhyPage(invocation, *reader.value(), *url, as_json);
}

}  // namespace quenlar
