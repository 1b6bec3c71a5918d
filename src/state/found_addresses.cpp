#include "state/found_addresses.h"

#include <vector>

#include "base/ascii.h"

namespace quenlar {

bool FoundAddresses::Contains(std::string_view address) const { return Contains(address, hash_.IgnoringCase(address)); }

bool FoundAddresses::Contains(std::string_view address, std::uint32_t hash) const {
  return index_.Contains(hash,
                         [&](std::uint32_t number) { return EqualsIgnoreCase(records_[number].address(), address); });
}

void FoundAddresses::Add(const FoundAddress& record) {
  const bool same_page = !pages_.empty() && pages_.back().url == record.URL && pages_.back().title == record.Title;
  const std::uint32_t page =
      same_page ? static_cast<std::uint32_t>(pages_.size() - 1) : AddPage(record.URL, record.Title);
  const std::uint32_t hash = hash_.IgnoringCase(record.Address);
  const bool is_new = !Contains(record.Address, hash);
  index_.MakeRoom();
  Append(page, record.Address, record.TagOnly);
  // Only the first of several equal addresses goes into the index. All of them would fill row after row with one hash.
  if (is_new) index_.Insert(hash, Count() - 1);
}

bool FoundAddresses::AddIfNew(PageTexts& page, std::string_view address, std::uint32_t hash, bool tag_only) {
  if (Contains(address, hash)) return false;
  if (page.filling != filling_) {
    page.number = AddPage(page.url, page.title);
    page.filling = filling_;
  }
  index_.MakeRoom();
  Append(page.number, address, tag_only);
  index_.Insert(hash, Count() - 1);
  return true;
}

std::uint32_t FoundAddresses::AddPage(std::string_view url, std::string_view title) {
  pages_.push_back({texts_.Keep(url), texts_.Keep(title)});
  return static_cast<std::uint32_t>(pages_.size() - 1);
}

void FoundAddresses::Append(std::uint32_t page, std::string_view address, bool tag_only) {
  const std::string_view kept = texts_.Keep(address);
  records_.push_back({kept.data(), static_cast<std::uint32_t>(kept.size()), page, tag_only ? 1u : 0u});
}

// All that needs memory comes first. The index gets no more records than it had, so it does not grow.
std::uint32_t FoundAddresses::RemoveUnwanted(AddressFilter& filter) {
  const std::uint32_t before = Count();
  std::vector<bool> kept(before);
  for (std::uint32_t i = 0; i < before; ++i) kept[i] = filter.Keeps(records_[i].address());
  std::uint32_t count = 0;
  for (std::uint32_t i = 0; i < before; ++i) {
    if (kept[i]) records_[count++] = records_[i];
  }
  if (count == before) return 0;
  records_.erase(records_.begin() + count, records_.end());
  index_.Clear();
  for (std::uint32_t i = 0; i < count; ++i) {
    const std::uint32_t hash = hash_.IgnoringCase(records_[i].address());
    if (!Contains(records_[i].address(), hash)) index_.Insert(hash, i);
  }
  return before - count;
}

bool FoundAddresses::CleanPages(const std::function<std::string(std::string_view)>& clean) {
  bool changed = false;
  for (Page& page : pages_) {
    for (std::string_view* text : {&page.url, &page.title}) {
      const std::string left = clean(*text);
      if (left.size() == text->size()) continue;
      *text = texts_.Keep(left);
      changed = true;
    }
  }
  return changed;
}

void FoundAddresses::Clear() { *this = FoundAddresses(hash_, filling_ + 1); }

std::size_t FoundAddresses::MemoryBytes() const {
  return records_.size() * sizeof(Record) + pages_.size() * sizeof(Page) + texts_.MemoryBytes() + index_.MemoryBytes();
}

}  // namespace quenlar
