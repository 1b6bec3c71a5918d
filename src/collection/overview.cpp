#include "collection/overview.h"

#include <cmath>
#include <cstdint>
#include <string>
#include <unordered_set>
#include <vector>

#include "collection/overview_page.h"
#include "collection/script_text.h"
#include "page/address_place.h"

// The data are one JSON object: "collection", "only" (what was chosen), "figures", "runs", "places" (their names) and
// "records". A record is a page, [number, url, title, site], or an address, [address, [sighting, sighting, ...]], and
// each page stands before the first address that names it. A sighting is four numbers: the page, the place's position
// in "places" (8 more where it is gone), when it was first seen, and the seconds from then until it was last seen.
// Those that are gone come last. Times are seconds since 1970 UTC. collection/overview/model.js reads all of it.
namespace quenlar {
namespace {

constexpr std::size_t kPiece = std::size_t{64} << 10;
constexpr int kGone = 8;

constexpr AddressPlace kPlaces[] = {AddressPlace::kText,   AddressPlace::kMailto,  AddressPlace::kAttribute,
                                    AddressPlace::kScript, AddressPlace::kComment, AddressPlace::kProtected};

int PositionOf(std::string_view place) {
  int position = 0;
  for (const AddressPlace known : kPlaces) {
    if (PlaceName(known) == place) break;
    ++position;
  }
  return position;
}

// A JSON member of an object that is being written; the first one of an object follows "{".
void Member(std::string_view name, std::string& to) {
  if (to.back() != '{') to += ',';
  AppendScriptText(name, to);
  to += ':';
}

void TextMember(std::string_view name, std::string_view value, std::string& to) {
  Member(name, to);
  AppendScriptText(value, to);
}

template <typename Number>
void NumberMember(std::string_view name, Number value, std::string& to) {
  Member(name, to);
  to += std::to_string(value);
}

void AppendRun(const RunRecord& run, std::string& to) {
  to += '{';
  NumberMember("started", run.started, to);
  NumberMember("ended", run.ended, to);
  TextMember("reason", run.reason, to);
  NumberMember("pages", run.pages, to);
  NumberMember("failed", run.failed, to);
  NumberMember("refused", run.refused, to);
  NumberMember("new", run.fresh, to);
  NumberMember("seconds", std::llround(run.seconds), to);
  to += '}';
}

// Everything before the records.
std::string Beginning(std::string_view name, const SightingChoice& choice, const CollectionFigures& figures,
                      const std::vector<RunRecord>& runs) {
  std::string text(overview_page::Head());
  text += '{';
  TextMember("collection", name, text);
  Member("only", text);
  text += '{';
  if (!choice.place.empty()) TextMember("place", choice.place, text);
  if (!choice.site.empty()) TextMember("site", choice.site, text);
  if (choice.since) NumberMember("since", *choice.since, text);
  text += '}';
  Member("figures", text);
  text += '{';
  NumberMember("addresses", figures.addresses, text);
  NumberMember("pages", figures.pages, text);
  NumberMember("left", figures.left, text);
  NumberMember("last_run", figures.last_run, text);
  text += '}';
  Member("runs", text);
  text += '[';
  for (const RunRecord& run : runs) {
    if (text.back() != '[') text += ',';
    AppendRun(run, text);
  }
  text += ']';
  Member("places", text);
  text += '[';
  for (const AddressPlace place : kPlaces) {
    if (text.back() != '[') text += ',';
    AppendScriptText(PlaceName(place), text);
  }
  text += ']';
  Member("records", text);
  return text + "[\n";
}

class Records {
 public:
  Records(bool with_gone, const TextSink& sink) : with_gone_(with_gone), sink_(sink) {}

  // Takes the sightings address by address. False: the sink wants no more.
  bool Add(const Sighting& sighting) {
    if (sighting.address != address_) {
      EndAddress();
      address_ = sighting.address;
    }
    AddPage(sighting);
    std::string& numbers = sighting.gone ? gone_ : live_;
    numbers += std::to_string(sighting.page_id) + ',';
    numbers += std::to_string(PositionOf(sighting.place) + (sighting.gone ? kGone : 0)) + ',';
    numbers += std::to_string(sighting.first_seen) + ',';
    numbers += std::to_string(sighting.last_seen - sighting.first_seen) + ',';
    return text_.size() < kPiece || HandOn();
  }

  void End() {
    EndAddress();
    HandOn();
  }

 private:
  void AddPage(const Sighting& sighting) {
    if (!written_.insert(sighting.page_id).second) return;
    BeginRecord();
    text_ += std::to_string(sighting.page_id) + ',';
    AppendScriptText(sighting.page, text_);
    text_ += ',';
    AppendScriptText(sighting.title, text_);
    text_ += ',';
    AppendScriptText(sighting.site, text_);
    text_ += ']';
  }

  void EndAddress() {
    if (!live_.empty() || (with_gone_ && !gone_.empty())) {
      std::string numbers = live_ + gone_;
      numbers.pop_back();
      BeginRecord();
      AppendScriptText(address_, text_);
      text_ += ",[" + numbers + "]]";
    }
    live_.clear();
    gone_.clear();
  }

  void BeginRecord() {
    if (!first_) text_ += ",\n";
    first_ = false;
    text_ += '[';
  }

  bool HandOn() {
    const bool wanted = sink_(text_);
    text_.clear();
    return wanted;
  }

  const bool with_gone_;
  const TextSink& sink_;
  std::string text_;         // not handed on yet
  std::string address_;      // the one whose sightings come
  std::string live_, gone_;  // its sightings, each number with a comma behind it
  std::unordered_set<PageId> written_;
  bool first_ = true;
};

}  // namespace

Status WriteOverview(CollectionReader& reader, std::string_view name, const OverviewChoice& choice,
                     const TextSink& sink) {
  const auto figures = reader.Figures();
  if (!figures.ok()) return figures.status();
  const auto runs = reader.Runs();
  if (!runs.ok()) return runs.status();
  bool wanted = sink(Beginning(name, choice.sightings, figures.value(), runs.value()));
  if (!wanted) return Status::Ok();
  Records records(choice.with_gone, sink);
  const Status listed =
      reader.Sightings(choice.sightings, [&](const Sighting& sighting) { return wanted = records.Add(sighting); });
  if (!listed.ok() || !wanted) return listed;
  records.End();
  sink("\n]}");
  sink(overview_page::Tail());
  return Status::Ok();
}

}  // namespace quenlar
