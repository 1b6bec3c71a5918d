// The eleven queues of links that a run works through: level 0 and the expansion levels 1 to 10.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <functional>
#include <string_view>
#include <vector>

#include "base/text_arena.h"
#include "base/text_hash.h"
#include "platform/index_table.h"

namespace quenlar {

// One link: the page address and a number that travels with it into the request name (1 when queued).
struct LinkRecord {
  std::string_view URL;  // valid until the queue is cleared
  std::int16_t number = 1;
};

// A growing list of links in the order in which they were found.
//
// Records before Next() have been started. A started record is in flight until Finish: its page has neither arrived nor
// failed, and nobody has given it up. The data file holds the records in flight too, because their pages are still to
// be visited. Records from Next() on wait for their turn.
//
//   const std::uint32_t index = queue.StartNext();
//   Download(queue.At(index).URL);
//   ... queue.Finish(index);   // when the page has been analysed or has failed
//
// Duplicate tests look at all records, visited ones included, in constant time. Adding may throw std::bad_alloc; the
// queue is then as it was before.
class LinkQueue {
 public:
  [[nodiscard]] std::uint32_t Count() const { return static_cast<std::uint32_t>(records_.size()); }
  [[nodiscard]] std::uint32_t Next() const { return next_; }
  [[nodiscard]] LinkRecord At(std::uint32_t index) const {
    const Record& record = records_[index];
    return {record.url(), record.number};
  }

  // Appends a copy of `url` unless the queue holds the same text; letter case counts. Returns whether it has appended.
  bool AddIfNew(std::string_view url, std::int16_t number = 1);

  // Appends a copy of `url` unless the queue holds a record of the same site, which is the same GetHost; letter case
  // counts. Returns whether it has appended.
  bool AddIfNewHost(std::string_view url, std::int16_t number = 1);

  // Returns whether the queue holds a record of the site of `url`. The test is that of AddIfNewHost.
  [[nodiscard]] bool HasHost(std::string_view url);

  // Appends a copy of `url` without a test.
  void Append(std::string_view url, std::int16_t number = 1);

  // Starts the record at Next(): it is in flight from now on, and Next() moves on by one. Returns its index. There must
  // be a record at Next().
  std::uint32_t StartNext();

  // Ends the flight of the record: it is done. Does nothing for a record that is not in flight.
  void Finish(std::uint32_t index);

  // The indices of the records in flight, ascending.
  [[nodiscard]] const std::vector<std::uint32_t>& InFlight() const { return in_flight_; }

  // Whether a later run would have anything to visit here: a record in flight, or one that waits.
  [[nodiscard]] bool HasUnvisited() const { return next_ < Count() || !in_flight_.empty(); }

  // Puts the records in flight back among those that wait, for a run that follows an unfinished one. They come right
  // before the record at Next(), in their order, and Next() becomes the first of them. Nothing is in flight then, and
  // the indices of started records change.
  void RestartInFlight();

  // Reverses the order of the records that wait. Started records keep their places.
  void Reverse();

  // Removes the records that wait or are in flight and for which `unwanted` is true. No run may go on: where
  // such a record is in flight, all that are go back among those that wait, as by RestartInFlight.
  void RemoveUnvisited(const std::function<bool(std::string_view url)>& unwanted);

  // Removes all records and gives their memory back. All views become invalid.
  void Clear();

  // The heap memory in use, in bytes, texts included.
  [[nodiscard]] std::size_t MemoryBytes() const;

 private:
  struct Record {
    const char* text;
    std::uint32_t length;
    std::int16_t number;
    [[nodiscard]] std::string_view url() const { return {text, length}; }
  };
  // An index is built when a duplicate test first needs it, and covers the records before `covered`. Level 0 is only
  // ever asked for sites and the other levels only for whole texts, so each queue builds one of its two.
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
