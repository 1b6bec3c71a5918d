// The part of Collection that visits pages anew: passes, refusals that are lifted, pages that turn out to be nearer.
#include <cstdlib>
#include <deque>
#include <utility>

#include "collection/collection.h"
#include "collection/collection_sql.h"
#include "collection/statements.h"

namespace quenlar {
namespace {

// Facts. Each pass has a number, counted from 1.
constexpr const char* kPass = "pass";
constexpr const char* kPassEnded = "pass ended";  // "yes", or nothing
constexpr const char* kReading = "reading";       // what the pages of the pass are read for, as a digest
constexpr const char* kWhole = "pass is whole";   // "yes", or nothing

constexpr std::size_t kKeyBytes = 8;

// Keys of links as the file has them: 8 bytes each, the lowest first.
std::string PackKeys(const std::vector<std::int64_t>& keys) {
  std::string bytes;
  bytes.reserve(keys.size() * kKeyBytes);
  for (const std::int64_t key : keys) {
    for (std::size_t i = 0; i < kKeyBytes; ++i) bytes += static_cast<char>(key >> (8 * i));
  }
  return bytes;
}

std::vector<std::int64_t> UnpackKeys(std::string_view bytes) {
  std::vector<std::int64_t> keys;
  for (; bytes.size() >= kKeyBytes; bytes.remove_prefix(kKeyBytes)) {
    std::uint64_t key = 0;
    for (std::size_t i = kKeyBytes; i-- > 0;) key = key << 8 | static_cast<unsigned char>(bytes[i]);
    keys.push_back(static_cast<std::int64_t>(key));
  }
  return keys;
}

}  // namespace

Status Collection::SaveLinks(PageId page, const std::vector<std::int64_t>& keys) {
  if (const Status begun = Begin(); !begun.ok()) return begun;
  const std::string packed = PackKeys(keys);
  return statements_->save_links.Bind(page, Bytes{packed}).Run();
}

// What a page leads to at once: the target of its redirect, or of its links.
Result<std::vector<KnownPage>> Collection::LedTo(const KnownPage& page) {
  std::vector<KnownPage> targets;
  if (page.Is(PageState::kMoved)) {
    Result<KnownPage> target = Page(page.moved_to);
    if (!target.ok()) return target.status();
    targets.push_back(target.take());
    return targets;
  }
  const Result<bool> row = statements_->links.Bind(page.page).Step();
  if (!row.ok()) return row.status();
  const auto keys = row.value() ? UnpackKeys(statements_->links.Text(0)) : std::vector<std::int64_t>();
  statements_->links.Reset();
  for (const std::int64_t key : keys) {
    const Result<bool> found = statements_->find_page.Bind(key).Step();
    if (!found.ok()) return found.status();
    if (found.value()) targets.push_back(ReadKnown(statements_->find_page));
    statements_->find_page.Reset();
  }
  return targets;
}

// The nearest pages come first, so that hardly any is looked at twice.
Status Collection::CarryNearer(PageId page, int depth, int deepest, const EachHost& queued) {
  if (const Status begun = Begin(); !begun.ok()) return begun;
  std::deque<std::pair<PageId, int>> nearer = {{page, depth}};
  while (!nearer.empty()) {
    const auto [from, at] = nearer.front();
    nearer.pop_front();
    const Result<KnownPage> source = Page(from);
    if (!source.ok()) return source.status();
    const Result<std::vector<KnownPage>> targets = LedTo(source.value());
    if (!targets.ok()) return targets.status();
    const bool redirects = source.value().Is(PageState::kMoved);  // costs no click
    const int behind = redirects ? at : at + 1;
    for (const KnownPage& target : targets.value()) {
      if (target.page == 0 || target.depth <= behind) continue;
      if (const Status s = BringNearer(target, from, behind, deepest, queued); !s.ok()) return s;
      if (!target.Is(PageState::kRead) && !target.Is(PageState::kMoved)) continue;
      redirects ? nearer.emplace_front(target.page, behind) : nearer.emplace_back(target.page, behind);
    }
  }
  return Status::Ok();
}

Status Collection::BringNearer(const KnownPage& page, PageId parent, int depth, int deepest, const EachHost& queued) {
  const Status deepened = statements_->deepen_page.Bind(depth, parent, page.page).Run();
  if (!deepened.ok()) return deepened;
  const bool lifted = page.Is(PageState::kRefused) && page.reason == kRefusedDepth && depth <= deepest;
  if (lifted) {
    if (const Status queued_now = statements_->lift_page.Bind(page.page).Run(); !queued_now.ok()) return queued_now;
    ++waiting_;
  }
  if (lifted || page.Is(PageState::kWaiting)) queued(page.host, depth);
  return Status::Ok();
}

Status Collection::QueueRefused(std::string_view reason, std::string_view option) {
  const std::string fact = "option " + std::string(reason);
  const Result<std::string> before = Fact(fact);
  if (!before.ok()) return before.status();
  if (before.value() == option) return Status::Ok();
  if (const Status set = SetFact(fact, option); !set.ok()) return set;
  if (before.value().empty()) return Status::Ok();  // the first run
  if (const Status queued = statements_->queue_refused.Bind(reason).Run(); !queued.ok()) return queued;
  waiting_ += database_->Changes();
  known_.Clear();
  return Status::Ok();
}

Result<std::optional<int>> Collection::QueueRefusedOf(HostId host, std::string_view reason) {
  if (const Status begun = Begin(); !begun.ok()) return begun;
  if (const Status queued = statements_->queue_refused_of.Bind(host, reason).Run(); !queued.ok()) return queued;
  const std::int64_t count = database_->Changes();
  if (count == 0) return std::optional<int>();
  waiting_ += count;
  const Result<bool> row = statements_->nearest_of.Bind(host).Step();
  if (!row.ok()) return row.status();
  const int depth = static_cast<int>(statements_->nearest_of.Int(0));
  statements_->nearest_of.Reset();
  return std::optional<int>(depth);
}

Result<Pass> Collection::BeginPass(bool again, std::string_view reading) {
  const Result<std::string> number = Fact(kPass), ended = Fact(kPassEnded), before = Fact(kReading),
                            was_whole = Fact(kWhole);
  for (const auto* const fact : {&number, &ended, &before, &was_whole}) {
    if (!fact->ok()) return fact->status();
  }
  Pass pass;
  const bool first = number.value().empty();
  const bool begins = first || (again && (!ended.value().empty() || waiting_ == 0));
  // Filters may name addresses, and what is erased must not stand here.
  const std::string digest = std::to_string(HashOf(reading));
  const bool other_reading = !before.value().empty() && before.value() != digest;
  pass.goes_on = again && !begins;
  // While a pass is whole, it stays so: some of its pages may still be known for what was asked for before.
  pass.whole = other_reading || (!begins && !was_whole.value().empty());
  if (begins && again) {
    if (const Status queued = QueueVisited(); !queued.ok()) return queued;
  }
  // A collection without a number is new, or was made before passes had one.
  const int now = first ? (waiting_ == 0 ? 1 : 2) : std::atoi(number.value().c_str()) + (begins ? 1 : 0);
  pass.later = now > 1;
  // Where parts of a pass were read for different things, the next one reads everything anew.
  const std::string read_for = begins || !other_reading ? digest : "different things";
  const std::pair<const char*, std::string> facts[] = {
      {kPass, std::to_string(now)}, {kPassEnded, ""}, {kReading, read_for}, {kWhole, pass.whole ? "yes" : ""}};
  for (const auto& [name, value] : facts) {
    if (const Status set = SetFact(name, value); !set.ok()) return set;
  }
  return pass;
}

Status Collection::EndPass() { return SetFact(kPassEnded, "yes"); }

Status Collection::QueueVisited() {
  if (const Status begun = Begin(); !begun.ok()) return begun;
  if (const Status queued = database_->Execute(sql::kQueueAgain); !queued.ok()) return queued;
  waiting_ += database_->Changes();
  known_.Clear();
  if (const Status forgotten = database_->Execute(sql::kForgetReads); !forgotten.ok()) return forgotten;
  return database_->Execute(sql::kForgetSearches);
}

}  // namespace quenlar
