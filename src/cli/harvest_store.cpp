#include "cli/harvest_store.h"

#include <charconv>
#include <utility>

#include "base/ascii.h"
#include "crawl/link_rules.h"
#include "page/url.h"
#include "platform/sha256.h"

namespace quenlar {
namespace {

// By the digest of the path: an address in the name of a file would stay in the collection after it was erased.
std::string FactOf(const HarvestInput& input) { return "harvest " + Sha256Hex(input.path); }

// The parts of a fact: size and time of the file, digest of the reading, offset, place in the text, damage, 1 for an
// end. The time is written as seconds and nanoseconds with a dot between them. Earlier versions wrote the seconds
// alone, and no reading; such an input is read once more.
constexpr std::size_t kParts = 7;

std::uint64_t NumberOf(std::string_view text) {
  std::uint64_t number = 0;
  std::from_chars(text.data(), text.data() + text.size(), number);
  return number;
}

}  // namespace

HarvestStore::HarvestStore(std::unique_ptr<Collection> collection, const Idna& idna, std::string_view reading)
    : collection_(std::move(collection)), idna_(idna), reading_(Sha256Hex(reading)) {}

bool HarvestStore::Failed(const Status& status) {
  if (failure_.ok()) failure_ = status;
  return !failure_.ok();
}

std::optional<HarvestPlace> HarvestStore::PlaceOf(const HarvestInput& input, const ReadableFile* file) {
  if (file == nullptr || !failure_.ok()) return HarvestPlace{};
  Progress progress;
  progress.file = std::to_string(file->size().value_or(0)) + " " + std::to_string(file->modified()) + "." +
                  std::to_string(file->modified_nanoseconds()) + " " + reading_;
  const Result<std::string> fact = collection_->Fact(FactOf(input));
  if (!fact.ok() && Failed(fact.status())) return HarvestPlace{};
  const std::vector<std::string_view> parts = Split(fact.value(), " ");
  if (parts.size() == kParts && fact.value().starts_with(progress.file + " ")) {
    progress.place = {NumberOf(parts[3]), NumberOf(parts[4])};
    progress.damaged = progress.damaged_before = static_cast<std::size_t>(NumberOf(parts[5]));
    if (parts[6] == "1") {
      ++finished_before_;
      under_way_.insert_or_assign(input.path, std::move(progress));
      return std::nullopt;
    }
  }
  return under_way_.insert_or_assign(input.path, std::move(progress)).first->second.place;
}

std::vector<std::size_t> HarvestStore::Add(const HarvestedPage& page, const std::vector<SeenAddress>& kept,
                                           std::size_t filtered) {
  if (!failure_.ok()) return {};
  const std::optional<Url> url = ParseUrl(page.url, nullptr, idna_);
  ArchivedPage archived;
  archived.url = page.url;
  if (page.of_record) archived.parsed = url ? &*url : nullptr;
  if (archived.parsed != nullptr) archived.site = SiteOf(*url);
  archived.type = page.type;
  archived.title = page.title;
  archived.status = page.status;
  archived.seen = page.seen.value_or(0);
  archived.filtered_count = filtered;
  Result<std::vector<std::size_t>> fresh = collection_->AddArchived(archived, kept);
  if (!fresh.ok() && Failed(fresh.status())) return {};
  return fresh.take();
}

void HarvestStore::Note(const HarvestInput& input, const HarvestPlace& behind, std::size_t damaged) {
  const auto found = under_way_.find(input.path);
  if (found == under_way_.end()) return;
  found->second.place = behind;
  found->second.damaged += damaged;
  Write(input, found->second, false);
}

std::size_t HarvestStore::NoteEnd(const HarvestInput& input, InputEnd end) {
  const auto found = under_way_.find(input.path);
  if (found == under_way_.end()) return 0;
  const std::size_t before = found->second.damaged_before;
  if (end == InputEnd::kDone) Write(input, found->second, true);
  if (end == InputEnd::kNotRead) Write(input, {.file = found->second.file, .place = {}}, false);
  under_way_.erase(found);
  return before;
}

void HarvestStore::Write(const HarvestInput& input, const Progress& progress, bool done) {
  if (!failure_.ok()) return;
  (void)Failed(collection_->SetFact(FactOf(input), progress.file + " " + std::to_string(progress.place.offset) + " " +
                                                       std::to_string(progress.place.text) + " " +
                                                       std::to_string(progress.damaged) + (done ? " 1" : " 0")));
}

bool HarvestStore::Commit(bool now) {
  constexpr std::chrono::seconds kEvery{1};
  if (!failure_.ok()) return false;
  const auto time = std::chrono::steady_clock::now();
  if (!now && time - committed_ < kEvery) return false;
  committed_ = time;
  return !Failed(now ? collection_->Commit() : collection_->CommitSoon());
}

}  // namespace quenlar
