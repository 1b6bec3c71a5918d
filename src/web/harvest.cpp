#include "web/harvest.h"

#include <optional>
#include <string>
#include <vector>

#include "base/ascii.h"
#include "web/page_addresses.h"
#include "web/page_matches.h"
#include "web/tag_text.h"

namespace quenlar {
namespace {

// Whether the match is an anchor with a mail target. Its only "<" is its first character.
bool IsMailLink(std::string_view match) { return ToLower(match[1]) == 'a' && ContainsIgnoreCase(match, "mailto:"); }

PageAddresses::Place PlaceOf(const PageMatch& match) {
  if (match.place == PageMatch::Place::kBetweenTags) return PageAddresses::Place::kBetweenTags;
  return IsMailLink(match.text) ? PageAddresses::Place::kMailLink : PageAddresses::Place::kTag;
}

// Collects the addresses of a page. Pumps at every match. Matches are found sixteen ahead of the one that is added, so
// that the processor has loaded the index entries of an address before they are read.
void Collect(AnalysisContext& context, std::string_view page, PageAddresses& addresses) {
  constexpr std::size_t kAhead = 16;
  struct Found {
    PageMatch match;
    PageAddresses::Address address;
  };
  std::vector<Found> found;
  PageMatches matches(page);
  do {
    found.clear();
    for (PageMatch match; found.size() < kAhead && matches.Next(match);) {
      found.push_back({match, addresses.Ready(match.address)});
    }
    for (const auto& [match, address] : found) {
      context.pump();
      if (match.address.empty()) continue;
      addresses.Add(PlaceOf(match), address, [&](std::string_view text) { return context.filter.Keeps(text); });
    }
  } while (found.size() == kAhead);
}

// Puts addresses into the found-address table.
class Inserter {
 public:
  Inserter(const Inserter&) = delete;
  Inserter& operator=(const Inserter&) = delete;
  Inserter(AnalysisContext& context, const PageAddresses& addresses, std::string_view page,
           std::string_view page_address)
      : context_(context), addresses_(addresses), page_(page), texts_{page_address, {}} {}

  // Adds the addresses of a list. Pumps before each. Returns how many it has handled: all of them, or those up to the
  // one that reached the stop number.
  std::size_t Insert(const PageAddresses::List& list, bool tag_only) {
    for (std::size_t i = 0; i < list.size(); ++i) {
      LookAhead(list, i);
      context_.pump();
      // Tested only now, because a harvest inside the pump may have added it.
      if (!Add(addresses_.At(list[i]), tag_only)) continue;
      if (InRun() >= context_.settings.EffectiveStopNumber()) {
        context_.run.stop_requested = true;
        stopped_ = true;
        return i + 1;
      }
    }
    return list.size();
  }

  [[nodiscard]] bool stopped() const { return stopped_; }

 private:
  void LookAhead(const PageAddresses::List& list, std::size_t i) const {
    constexpr std::size_t kStep = 4;
    const FoundAddresses& found = context_.project.found;
    const std::size_t left = list.size() - i;
    if (left > 3 * kStep) found.PrefetchSlot(addresses_.At(list[i + 3 * kStep]).hash);
    if (left > 2 * kStep) found.PrefetchRecord(addresses_.At(list[i + 2 * kStep]).hash);
    if (left > kStep) found.PrefetchText(addresses_.At(list[i + kStep]).hash);
  }

  // The addresses found in this run, without those that the project had before.
  [[nodiscard]] std::int64_t InRun() const {
    return static_cast<std::int64_t>(context_.project.found.Count()) - context_.run.baseline;
  }

  // Pumps when a save is due. Returns false when the table has the address already.
  bool Add(const PageAddresses::Address& address, bool tag_only) {
    FoundAddresses& found = context_.project.found;
    if (found.Contains(address.text, address.hash)) return false;
    if (!title_) texts_.title = title_.emplace(GetPageTitle(page_));  // few pages have an address that is new
    (void)found.AddIfNew(texts_, address.text, address.hash, tag_only);
    context_.view.AddRow(found.Count() - 1, tag_only);
    if (InRun() % context_.settings.SaveEvery() == 0) {
      context_.saver.SaveProjectData();
      context_.saver.SaveProjectReport();
    }
    context_.view.ShowAddressCount(found.Count());
    return true;
  }

  AnalysisContext& context_;
  const PageAddresses& addresses_;
  std::string_view page_;
  std::optional<std::string> title_;
  FoundAddresses::PageTexts texts_;
  bool stopped_ = false;
};

}  // namespace

HarvestEnd ExtractAddresses(AnalysisContext& context, std::string_view page, std::string_view page_address) {
  context.pump();
  PageAddresses addresses(context.project.found.hash());
  Collect(context, page, addresses);
  context.pump();
  const auto text = addresses.TextList(), tag = addresses.TagList();
  std::size_t left = text.size() + tag.size();
  Inserter inserter(context, addresses, page, page_address);
  left -= inserter.Insert(text, false);
  if (!inserter.stopped()) left -= inserter.Insert(tag, tag.size() == 1);
  return left == 0 ? HarvestEnd::kWholePage : HarvestEnd::kStopNumberReached;
}

}  // namespace quenlar
