// Reads records out of a text and hands them out in batches, each with the memory in which its records lie.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "archive/byte_source.h"
#include "archive/member_source.h"
#include "archive/warc_pieces.h"

namespace quenlar {

struct WarcRecord {
  WarcHead head;
  std::string_view block;  // at most kMostBlock bytes of it
};

inline constexpr std::size_t kMostBlock = 16u << 20;  // of a record's block: more than 8 MiB of a page take in chunks

// Whether a record of this kind may hold a page.
[[nodiscard]] bool MayHoldPage(const WarcHead& head);

// Buffers of one size that are used again, for any thread: fresh memory costs more than what is done with it.
class BufferPool {
 public:
  explicit BufferPool(std::size_t size) : size_(size) {}
  // The first `size` bytes may hold anything.
  [[nodiscard]] std::unique_ptr<char[]> Take(std::size_t size);
  // Allocates nothing: it is called where a batch ends, also where memory has run out.
  void Return(std::unique_ptr<char[]> buffer, std::size_t size);

 private:
  static constexpr std::size_t kMostKept = 16;
  const std::size_t size_;
  std::mutex mutex_;
  std::array<std::unique_ptr<char[]>, kMostKept> kept_;  // guarded by mutex_, as what follows
  std::size_t kept_count_ = 0;
};

struct RecordBatch {
  explicit RecordBatch(std::shared_ptr<BufferPool> its_pool) : pool(std::move(its_pool)) {}
  ~RecordBatch() { pool->Return(std::move(bytes), capacity); }
  RecordBatch(const RecordBatch&) = delete;
  RecordBatch& operator=(const RecordBatch&) = delete;

  const std::shared_ptr<BufferPool> pool;
  std::unique_ptr<char[]> bytes;
  std::size_t capacity = 0;
  std::vector<WarcRecord> records;  // that may hold pages; the views are into `bytes`
  std::size_t damaged = 0;          // records, and stretches between records
  std::uint64_t text_end = 0;       // place in the text behind the last record
};

class RecordBatches {
 public:
  // `members` is `text` where that is a gzip file; the reading then ends where the end of a record is the end of a
  // member, because from there on members may be divided over threads. Null reads the text to its end. The first
  // `skip` bytes of the text are passed over.
  RecordBatches(ByteSource& text, const MemberSource* members, std::uint64_t skip);

  // The next batch; null when the reading has ended.
  [[nodiscard]] Result<std::unique_ptr<RecordBatch>> Next();

  // Whether the reading has ended at the end of a member.
  [[nodiscard]] bool synced() const { return synced_; }

 private:
  [[nodiscard]] std::string_view Rest() const { return {bytes_.get() + at_, end_ - at_}; }
  [[nodiscard]] Result<bool> GoOn(RecordBatch& batch);
  void TakePieces(RecordBatch& batch);
  [[nodiscard]] Status TakeLarge(RecordBatch& batch, const WarcPiece& large);
  void Take(RecordBatch& batch, const WarcPiece& piece);
  void TakeRecord(RecordBatch& batch, const WarcHead& head, std::string_view block, bool damaged);
  [[nodiscard]] bool AtSync();
  [[nodiscard]] Status Fill();
  // Reads `size` bytes and forgets them; fewer at the end of the text.
  [[nodiscard]] Result<std::uint64_t> Pass(std::uint64_t size);
  // A new buffer that begins with `text`, which may lie in the old one.
  void Rebuffer(std::string_view text, std::size_t capacity);

  ByteSource& text_;
  const MemberSource* const members_;
  const std::shared_ptr<BufferPool> pool_;
  std::uint64_t skip_;
  std::unique_ptr<char[]> bytes_;  // holds [at_, end_) of the text, which stands at `offset_` + `at_` in it
  std::size_t capacity_ = 0, at_ = 0, end_ = 0;
  std::uint64_t offset_ = 0;
  std::size_t looked_at_ = 0;  // bytes of the rest in which a piece has been looked for
  // Behind a record that was passed over: what follows it in the text. The buffer ends at that record.
  std::string behind_gap_;
  std::uint64_t gap_size_ = 0;
  bool gap_ = false, text_ended_ = false, synced_ = false, lost_before_ = false;
};

}  // namespace quenlar
