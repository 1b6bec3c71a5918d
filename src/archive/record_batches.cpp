#include "archive/record_batches.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <utility>

#include "base/ascii.h"

namespace quenlar {
namespace {

constexpr std::size_t kBatch = 512u << 10;  // bytes of text: what a processor keeps near
constexpr std::size_t kLarge = 2u << 20;    // a buffer of a batch above this is cut to what is used of it
constexpr std::size_t kGrowth = 4;
constexpr std::size_t kBehindGap = 64u << 10;
constexpr std::size_t kMostBuffer = kWarcWindow + kBatch;

void Move(std::string_view& text, std::ptrdiff_t by) {
  if (!text.empty()) text = {text.data() + by, text.size()};
}

// The size of a buffer in which the record at the beginning of `rest` ends, with something behind it. Where its head
// does not tell, a larger one than that at hand if `rest` fills more than half of it.
std::size_t RoomFor(std::string_view rest, std::size_t capacity) {
  WarcHead head;
  if (ParseWarcHead(rest, head) == WarcHeadOutcome::kHead && head.length && *head.length < kWarcWindow) {
    const std::size_t whole = head.size + static_cast<std::size_t>(*head.length) + kBehindGap;
    if (whole > rest.size() && whole <= kWarcWindow) return std::max(whole, kBatch);
  }
  if (rest.size() * 2 <= capacity) return capacity;
  return std::min(capacity * kGrowth, capacity < kWarcWindow ? kWarcWindow : kMostBuffer);
}

// Copies what the records use of a large buffer, so that a few large records in flight do not fill the memory.
void Shrink(RecordBatch& batch) {
  if (batch.capacity <= kLarge || batch.records.empty()) return;
  const char* first = batch.bytes.get() + batch.capacity;
  const char* last = batch.bytes.get();
  const auto see = [&](std::string_view text) {
    if (text.empty()) return;
    first = std::min(first, text.data());
    last = std::max(last, text.data() + text.size());
  };
  for (const WarcRecord& record : batch.records) {
    for (const std::string_view text :
         {record.head.target, record.head.type, record.head.date, record.head.content_type, record.block}) {
      see(text);
    }
  }
  const auto size = static_cast<std::size_t>(last - first);
  auto bytes = std::make_unique_for_overwrite<char[]>(size);
  std::memcpy(bytes.get(), first, size);
  const std::ptrdiff_t by = bytes.get() - first;
  for (WarcRecord& record : batch.records) {
    for (std::string_view* text :
         {&record.head.target, &record.head.type, &record.head.date, &record.head.content_type, &record.block}) {
      Move(*text, by);
    }
  }
  batch.bytes = std::move(bytes);
  batch.capacity = size;
}

}  // namespace

std::unique_ptr<char[]> BufferPool::Take(std::size_t size) {
  if (size == size_) {
    const std::lock_guard lock(mutex_);
    if (kept_count_ > 0) return std::move(kept_[--kept_count_]);
  }
  return std::make_unique_for_overwrite<char[]>(size);
}

void BufferPool::Return(std::unique_ptr<char[]> buffer, std::size_t size) {
  if (!buffer || size != size_) return;
  const std::lock_guard lock(mutex_);
  if (kept_count_ < kMostKept) kept_[kept_count_++] = std::move(buffer);
}

RecordBatches::RecordBatches(ByteSource& text, const MemberSource* members, std::uint64_t skip)
    : text_(text), members_(members), pool_(std::make_shared<BufferPool>(kBatch)), skip_(skip) {}

bool MayHoldPage(const WarcHead& head) {
  return EqualsIgnoreCase(head.type, "response") || EqualsIgnoreCase(head.type, "resource") ||
         EqualsIgnoreCase(head.type, "conversion");
}

void RecordBatches::Rebuffer(std::string_view text, std::size_t capacity) {
  capacity = std::max(capacity, text.size());
  std::unique_ptr<char[]> bytes = pool_->Take(capacity);
  if (!text.empty()) std::memcpy(bytes.get(), text.data(), text.size());
  pool_->Return(std::move(bytes_), capacity_);
  bytes_ = std::move(bytes);
  capacity_ = capacity;
  offset_ += at_;
  at_ = 0;
  end_ = text.size();
}

Result<std::uint64_t> RecordBatches::Pass(std::uint64_t size) {
  std::array<char, 65536> unused;
  std::uint64_t passed = 0;
  while (passed < size) {
    const auto piece = static_cast<std::size_t>(std::min<std::uint64_t>(unused.size(), size - passed));
    const Result<std::size_t> got = text_.Read(unused.data(), piece);
    if (!got.ok()) return got.status();
    if (got.value() == 0) break;
    passed += got.value();
  }
  return passed;
}

Status RecordBatches::Fill() {
  const Result<std::size_t> got = text_.Read(bytes_.get() + end_, capacity_ - end_);
  if (!got.ok()) return got.status();
  end_ += got.value();
  text_ended_ = got.value() == 0;
  return Status::Ok();
}

Result<std::unique_ptr<RecordBatch>> RecordBatches::Next() {
  auto batch = std::make_unique<RecordBatch>(pool_);
  if (!bytes_) {
    const Result<std::uint64_t> passed = Pass(skip_);
    if (!passed.ok()) return passed.status();
    offset_ = passed.value();
    Rebuffer({}, kBatch);
  }
  if (synced_ || (text_ended_ && at_ == end_ && !gap_)) return std::unique_ptr<RecordBatch>();
  for (;;) {
    TakePieces(*batch);
    const Result<bool> goes_on = GoOn(*batch);
    if (!goes_on.ok()) return goes_on.status();
    if (!goes_on.value()) break;
  }
  batch->text_end = offset_ + at_ + (gap_ && at_ == end_ ? gap_size_ : 0);
  const std::string_view rest = Rest();
  batch->bytes = std::move(bytes_);
  batch->capacity = capacity_;
  Rebuffer(rest, std::max(kBatch, std::min(2 * rest.size(), kMostBuffer)));
  Shrink(*batch);
  return batch;
}

// What is to be done when no more can be taken out of the buffer. False when the batch is to be handed out.
Result<bool> RecordBatches::GoOn(RecordBatch& batch) {
  if (gap_) {
    if (!batch.records.empty()) return false;
    at_ = end_ + static_cast<std::size_t>(gap_size_);
    Rebuffer(std::exchange(behind_gap_, {}), kBatch);
    gap_ = false;
    return true;
  }
  if (text_ended_) return false;
  if (members_ != nullptr && AtSync()) {
    at_ = end_;
    synced_ = true;
    return false;
  }
  if (end_ == capacity_) {
    const WarcPiece piece = NextWarcPiece(Rest(), true);
    if (piece.kind == WarcPiece::Kind::kLarge) {
      if (!batch.records.empty()) return false;
      if (const Status taken = TakeLarge(batch, piece); !taken.ok()) return taken;
      return true;
    }
    if (!batch.records.empty()) return false;
    const std::string_view rest = Rest();
    Rebuffer(rest, RoomFor(rest, capacity_));
  }
  if (const Status filled = Fill(); !filled.ok()) return filled;
  return true;
}

// A member has just ended, and nothing of a record waits for more.
bool RecordBatches::AtSync() { return end_ > 0 && members_->at_member_end() && IsWarcBlank(Rest()); }

void RecordBatches::TakePieces(RecordBatch& batch) {
  const bool more = !text_ended_ && !gap_;
  // At the end of a member a record may well end. A text that has been looked at is looked at again when it has grown
  // by half, so that the work stays linear.
  const bool member_end = more && members_ != nullptr && end_ > 0 && members_->at_member_end();
  if (more && end_ < capacity_ && !member_end) return;
  if (member_end && end_ - at_ < looked_at_ + looked_at_ / 2) return;
  while (at_ < end_) {
    const WarcPiece piece = NextWarcPiece(Rest(), more);
    if (piece.kind == WarcPiece::Kind::kMore && member_end) {
      // Behind the last record of a member nothing needs to follow.
      const WarcPiece last = NextWarcPiece(Rest(), false);
      if (last.kind != WarcPiece::Kind::kRecord || last.damaged) break;
      Take(batch, last);
      continue;
    }
    if (piece.kind == WarcPiece::Kind::kLarge) break;
    Take(batch, piece);
    if (piece.kind == WarcPiece::Kind::kMore) break;
  }
  looked_at_ = end_ - at_;
}

void RecordBatches::Take(RecordBatch& batch, const WarcPiece& piece) {
  if (piece.kind == WarcPiece::Kind::kLost) {
    if (!lost_before_) ++batch.damaged;
    lost_before_ = true;
  } else if (piece.kind == WarcPiece::Kind::kRecord) {
    TakeRecord(batch, piece.head, piece.block, piece.damaged);
  }
  at_ += piece.size;
}

void RecordBatches::TakeRecord(RecordBatch& batch, const WarcHead& head, std::string_view block, bool damaged) {
  lost_before_ = damaged;
  if (damaged) ++batch.damaged;
  if (MayHoldPage(head)) batch.records.push_back({head, block.substr(0, kMostBlock)});
}

// A record that is longer than the buffer. Its end is looked at to see whether it is sound.
Status RecordBatches::TakeLarge(RecordBatch& batch, const WarcPiece& large) {
  const std::uint64_t rest = *large.head.length - large.block.size();
  const Result<std::uint64_t> passed = Pass(rest);
  if (!passed.ok()) return passed.status();
  gap_ = true;
  gap_size_ = passed.value();
  behind_gap_.resize(kBehindGap);
  std::size_t behind = 0;
  while (behind < behind_gap_.size()) {
    const Result<std::size_t> got = text_.Read(behind_gap_.data() + behind, behind_gap_.size() - behind);
    if (!got.ok()) return got.status();
    if (got.value() == 0) break;
    behind += got.value();
  }
  behind_gap_.resize(behind);
  const std::size_t blanks = std::min(behind_gap_.find_first_not_of(std::string_view("\r\n\0", 3)), behind);
  const bool sound = gap_size_ == rest && (blanks == behind || BeginsWarcHead(behind_gap_.substr(blanks, 6)));
  const std::size_t next = sound ? std::string_view::npos : FindWarcHead(large.block, 0);
  TakeRecord(batch, large.head, large.block.substr(0, next), !sound);
  const std::size_t before = Rest().size() - large.block.size();
  at_ = next == std::string_view::npos ? end_ : at_ + before + next;
  return Status::Ok();
}

}  // namespace quenlar
