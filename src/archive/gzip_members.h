// Reads the members of a gzip file, where each holds whole records, in spans that several threads may read.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <string_view>
#include <vector>

#include "archive/record_batches.h"
#include "base/status.h"
#include "platform/files.h"
#include "platform/inflate.h"

namespace quenlar {

// What has been read of a span.
struct MemberSpan {
  std::uint64_t begin = 0;  // of the first member that was read; where none was found, as `end`
  std::uint64_t end = 0;    // behind the last one
  bool stream = false;      // what stands at `end` is not a sound member of whole records, or too large for this way
};

// An object is for one thread at a time. It keeps its memory.
class MemberReader {
 public:
  // `room`: how much of the text of one member it keeps in memory.
  explicit MemberReader(std::size_t room) : most_room_(room) {}

  // Reads the members that begin in the file's bytes [begin, limit) and gives their records to `each`, in order. With
  // `sure` off, `begin` may stand anywhere: the first member of whole records behind it is looked for. The views of a
  // record live until `each` returns. Fails where the file cannot be read.
  [[nodiscard]] Result<MemberSpan> Read(const ReadableFile& file, std::uint64_t begin, std::uint64_t limit, bool sure,
                                        const std::function<void(const WarcRecord& record)>& each);

 private:
  enum class Outcome { kRead, kStream, kEnd };

  [[nodiscard]] std::string_view Rest() const { return std::string_view(window_.get(), end_).substr(at_); }
  // Gets `size` bytes of the file into the window, from the place at hand on; fewer where the file ends.
  [[nodiscard]] Status Fill(const ReadableFile& file, std::size_t size);
  [[nodiscard]] Result<Outcome> ReadMember(const ReadableFile& file);
  [[nodiscard]] bool TakeRecords(std::string_view text);
  // Goes to the first member of records in the next `size` bytes.
  [[nodiscard]] bool FindMember(std::size_t size);

  const std::size_t most_room_;
  const std::unique_ptr<MemberInflater> inflater_ = MakeMemberInflater();
  const std::unique_ptr<StreamInflater> trial_ = MakeStreamInflater();
  std::unique_ptr<char[]> window_, text_;
  std::size_t capacity_ = 0, room_ = 0;
  std::uint64_t offset_ = 0;  // of the window in the file
  std::size_t at_ = 0, end_ = 0;
  bool file_ended_ = false;
  std::vector<WarcRecord> records_;  // of the member at hand
};

}  // namespace quenlar
