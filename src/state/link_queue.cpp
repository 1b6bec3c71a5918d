#include "state/link_queue.h"

#include <algorithm>
#include <cassert>

#include "state/get_host.h"

namespace quenlar {

namespace {

std::string_view WholeText(std::string_view url) { return url; }

}  // namespace

bool LinkQueue::AddIfNew(std::string_view url, std::int16_t number) { return AddIfNew(urls_, WholeText, url, number); }

bool LinkQueue::AddIfNewHost(std::string_view url, std::int16_t number) {
  return AddIfNew(hosts_, HostPart, url, number);
}

bool LinkQueue::HasHost(std::string_view url) {
  Cover(hosts_, HostPart);
  const std::string_view wanted = HostPart(url);
  return Contains(hosts_, HostPart, wanted, hash_.Exact(wanted));
}

void LinkQueue::Append(std::string_view url, std::int16_t number) {
  const std::string_view kept = texts_.Keep(url);
  records_.push_back({kept.data(), static_cast<std::uint32_t>(kept.size()), number});
}

bool LinkQueue::AddIfNew(Index& index, Key key, std::string_view url, std::int16_t number) {
  if (index.covered < Count()) Cover(index, key);
  const std::string_view wanted = key(url);
  const std::uint32_t hash = hash_.Exact(wanted);
  if (Contains(index, key, wanted, hash)) return false;
  index.table.MakeRoom();
  Append(url, number);
  index.table.Insert(hash, index.covered);
  index.covered = Count();
  return true;
}

bool LinkQueue::Contains(const Index& index, Key key, std::string_view wanted, std::uint32_t hash) const {
  return index.table.Contains(hash, [&](std::uint32_t number) { return key(records_[number].url()) == wanted; });
}

// Only the first of several equal keys goes into the index. All of them would fill row after row with one hash.
void LinkQueue::Cover(Index& index, Key key) {
  for (; index.covered < Count(); ++index.covered) {
    const std::string_view covered = key(records_[index.covered].url());
    const std::uint32_t hash = hash_.Exact(covered);
    if (!Contains(index, key, covered, hash)) index.table.Insert(hash, index.covered);
  }
}

void LinkQueue::ForgetIndices() { urls_ = hosts_ = Index(); }

std::uint32_t LinkQueue::StartNext() {
  assert(next_ < Count());
  in_flight_.push_back(next_);
  return next_++;
}

void LinkQueue::Finish(std::uint32_t index) { std::erase(in_flight_, index); }

void LinkQueue::RestartInFlight() {
  if (in_flight_.empty()) return;
  std::vector<Record> done, again;
  auto in_flight = in_flight_.begin();
  for (std::uint32_t i = 0; i < next_; ++i) {
    const bool restarted = in_flight != in_flight_.end() && *in_flight == i;
    if (restarted) ++in_flight;
    (restarted ? again : done).push_back(records_[i]);
  }
  next_ = static_cast<std::uint32_t>(done.size());
  std::copy(done.begin(), done.end(), records_.begin());
  std::copy(again.begin(), again.end(), records_.begin() + next_);
  in_flight_.clear();
  ForgetIndices();
}

void LinkQueue::Reverse() {
  std::reverse(records_.begin() + next_, records_.end());
  ForgetIndices();
}

void LinkQueue::RemoveUnvisited(const std::function<bool(std::string_view)>& unwanted) {
  const auto is_unwanted = [&](const Record& record) { return unwanted(record.url()); };
  const auto flies_unwanted = [&](std::uint32_t index) { return is_unwanted(records_[index]); };
  if (std::any_of(in_flight_.begin(), in_flight_.end(), flies_unwanted)) RestartInFlight();
  const auto kept_end = std::remove_if(records_.begin() + next_, records_.end(), is_unwanted);
  if (kept_end == records_.end()) return;
  records_.erase(kept_end, records_.end());
  ForgetIndices();
}

void LinkQueue::Clear() { *this = LinkQueue(); }

std::size_t LinkQueue::MemoryBytes() const {
  return records_.size() * sizeof(Record) + texts_.MemoryBytes() + urls_.table.MemoryBytes() +
         hosts_.table.MemoryBytes() + in_flight_.capacity() * sizeof(in_flight_[0]);
}

}  // namespace quenlar
