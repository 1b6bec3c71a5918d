// Reads one input: finds out what it is, and parts it into pieces of work that any thread may do.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "archive/gzip_members.h"
#include "archive/input_kind.h"
#include "archive/input_walk.h"
#include "archive/member_source.h"
#include "archive/record_batches.h"
#include "archive/record_page.h"
#include "archive/sources.h"
#include "base/status.h"
#include "platform/files.h"

namespace quenlar {

// Where in an input the reading stands. Stored, and given back to an InputReader, it goes on there.
struct HarvestPlace {
  std::uint64_t offset = 0;  // in the file; of a packed one the beginning of a member
  std::uint64_t text = 0;    // bytes from there on, unpacked, that have been read
  bool operator==(const HarvestPlace&) const = default;
};

// What a thread of the harvest works with.
struct HarvestTools {
  explicit HarvestTools(std::size_t room) : members(room) {}
  MemberReader members;
};

// The outcome of a piece of work.
struct HarvestPortion {
  std::vector<HarvestedPage> pages;  // in the order of the input
  PageCounts counts;
  std::size_t damaged = 0;         // records that were damaged, and stretches between records
  HarvestPlace behind;             // where the next piece of work begins
  Status failure;                  // why the input could not be read, or not to its end
  std::optional<MemberSpan> span;  // of a gzip file whose members are read apart
  std::uint64_t limit = 0;         // of that span
  int round = 0;                   // of such spans
};
using HarvestWork = std::function<HarvestPortion(HarvestTools& tools)>;

class InputReader {
 public:
  // `beginning` has been read of `rest` already. `file` is null where the input can only be read once; `place` is then
  // the beginning. Everything must outlive the reader and the work.
  InputReader(const HarvestInput& input, const ReadableFile* file, ByteSource& rest, std::string beginning,
              const HarvestPlace& place, const PageReading& reading);

  enum class Step {
    kWork,  // there is a piece of work, of about `weight` bytes
    kWait,  // none before the outcome of an earlier one has been taken
    kEnd,   // none any more
  };
  [[nodiscard]] Step Next(HarvestWork& work, std::size_t& weight);

  // To be called with every outcome, in the order in which Next gave the work, on the thread of Next. True: the pages
  // of `portion` are the next ones of the input. It may have been read anew with `tools` before. False: drop it. It
  // came from a place that was only guessed to be the beginning of a member, and its bytes come with another portion.
  [[nodiscard]] bool Take(HarvestPortion& portion, HarvestTools& tools);

  // What the input is, when the first piece of work has been asked for; behind its packing.
  [[nodiscard]] InputKind kind() const { return kind_; }

 private:
  enum class Way { kUnknown, kPage, kRecords, kSpans, kEnd };

  [[nodiscard]] Status Begin();
  [[nodiscard]] Status BeginZstd();
  [[nodiscard]] Status BeginPacked(bool apart);
  void BeginSpans(std::uint64_t offset);
  void BeginRecords(ByteSource& text, const HarvestPlace& place);
  void BeginMembers(const HarvestPlace& place);
  [[nodiscard]] InputKind KindOf(std::string_view beginning) const;
  [[nodiscard]] Step NextPage(HarvestWork& work, std::size_t& weight);
  [[nodiscard]] Step NextBatch(HarvestWork& work, std::size_t& weight);
  [[nodiscard]] Step EndBatches(HarvestWork& work, std::size_t& weight);
  [[nodiscard]] Step NextSpan(HarvestWork& work, std::size_t& weight);
  [[nodiscard]] HarvestPortion ReadSpan(HarvestTools& tools, std::uint64_t begin, std::uint64_t limit, bool sure) const;

  const std::string name_;
  const bool named_;
  const ReadableFile* const file_;
  const PageReading& reading_;
  const HarvestPlace place_;
  ResumedSource packed_;
  std::string_view beginning_;
  InputKind kind_ = InputKind::kEmpty;
  Way way_ = Way::kUnknown;
  bool apart_ = false;  // members that hold whole records are divided over threads

  // A text of records, or a page.
  std::unique_ptr<FileSource> file_source_;
  std::unique_ptr<MemberSource> members_;
  std::unique_ptr<ResumedSource> unpacked_;
  std::unique_ptr<RecordBatches> batches_;
  HarvestPlace text_place_;  // of the text of `batches_`
  std::size_t damaged_ = 0;  // as far as records and stretches have shown it

  // Spans of members.
  std::uint64_t next_span_ = 0;  // where the next span begins
  std::uint64_t expected_ = 0;   // where the next member does, as far as spans have been taken
  std::size_t under_way_ = 0;    // spans of this round that have not been taken
  bool probing_ = true;          // whether the members at hand hold whole records is not known yet
  int round_ = 0;                // of spans; those of earlier ones are not used
};

}  // namespace quenlar
