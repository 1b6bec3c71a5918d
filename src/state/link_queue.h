// The eleven queues of links that a run works through: level 0 and the expansion levels 1 to 10.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <string_view>
#include <vector>

#include "base/text_arena.h"
#include "base/text_hash.h"
#include "state/index_table.h"

namespace quenlar {

// One link: the page address and a number that travels with it into the request name (1 when queued).
struct LinkRecord {
  std::string_view URL;  // valid until the queue is cleared
  std::int16_t number = 1;
};

// A growing list of links in the order in which they were found. Records before Next() have been started; some of
// those may still be in flight (started and neither completed, failed nor abandoned), and a file of the links still
// to visit holds them too. Every duplicate test gives the answer of a linear scan over all records, visited ones
// included, in constant time.
class LinkQueue {
 public:
  [[nodiscard]] std::uint32_t Count() const { return static_cast<std::uint32_t>(records_.size()); }
  [[nodiscard]] std::uint32_t Next() const { return next_; }
  [[nodiscard]] LinkRecord At(std::uint32_t index) const {
    const Record& record = records_[index];
    return {record.url(), record.number};
  }

  // Appends unless the same text is already there (exact comparison). True when appended.
  bool AddIfNew(std::string_view url, std::int16_t number = 1);

  // Appends unless a record of the same site is there (GetHost of both equal, exact comparison). True when appended.
  bool AddIfNewHost(std::string_view url, std::int16_t number = 1);

  // Whether a record of the same site is there, as AddIfNewHost asks it.
  [[nodiscard]] bool HasHost(std::string_view url);

  // Appends, whatever is there.
  void Append(std::string_view url, std::int16_t number = 1);

  // Takes the record at Next(), moves Next() on by one and counts the record as in flight. Only while Next() < Count().
  std::uint32_t StartNext();

  // The record is done: it is in flight no more. Does nothing for a record that is not in flight.
  void Finish(std::uint32_t index);

  // Indices in flight, ascending.
  [[nodiscard]] const std::vector<std::uint32_t>& InFlight() const { return in_flight_; }

  // Links that a later run would still have to visit: in flight, then Next() to Count() - 1.
  [[nodiscard]] bool HasUnvisited() const { return next_ < Count() || !in_flight_.empty(); }

  // Takes what is in flight back, for a run that begins after one that left it unfinished: those records come right
  // before the one at Next(), in their order, and Next() is the first of them. Indices of started records change.
  void RestartInFlight();

  // Turns the order of the records not yet started around (with none started: record i changes places with record
  // Count() - 1 - i).
  void Reverse();

  // No records, Next() 0, nothing in flight, memory given back.
  void Clear();

  // Heap memory in use, texts included.
  [[nodiscard]] std::size_t MemoryBytes() const;

 private:
  struct Record {
    const char* text;
    std::uint32_t length;
    std::int16_t number;
    [[nodiscard]] std::string_view url() const { return {text, length}; }
  };
  // An index is built when its question is first asked, and reaches to `covered`: level 0 is only ever asked for
  // hosts, the other levels only for whole texts.
  struct Index {
    IndexTable table;
    std::uint32_t covered = 0;
  };
  using Key = std::string_view (*)(std::string_view url);

  bool AddIfNew(Index& index, Key key, std::string_view url, std::int16_t number);
  [[nodiscard]] bool Contains(const Index& index, Key key, std::string_view wanted, std::uint32_t hash) const;
  void Cover(Index& index, Key key);
  void ForgetIndices();

  std::deque<Record> records_;
  TextArena texts_;
  TextHash hash_;
  Index urls_, hosts_;
  std::vector<std::uint32_t> in_flight_;
  std::uint32_t next_ = 0;
};

inline constexpr int kLevels = 11;  // level 0 and levels 1 to 10

// Index 0 is queue M, indices 1 to 10 are queues A to J.
using LinkQueues = std::array<LinkQueue, kLevels>;

// 'M' for level 0, 'A' to 'J' for levels 1 to 10.
[[nodiscard]] constexpr char SectionLetter(int level) { return level == 0 ? 'M' : static_cast<char>('A' + level - 1); }

// The request letter of a page of this level: "M", then "X", "Y", "Z", "V", "W", "P", "Q", "R", "S", "T".
[[nodiscard]] constexpr char RequestLetter(int level) { return "MXYZVWPQRST"[level]; }

}  // namespace quenlar
