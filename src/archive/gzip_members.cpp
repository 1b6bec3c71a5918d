#include "archive/gzip_members.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <utility>

#include "archive/member_source.h"
#include "archive/warc_head.h"
#include "archive/warc_pieces.h"

namespace quenlar {
namespace {

constexpr std::size_t kFirstRoom = 1u << 20;   // of text
constexpr std::size_t kSlack = 64u << 10;      // packed bytes behind a span that are read with it
constexpr std::size_t kMostMember = 4u << 20;  // packed bytes of a member
constexpr std::size_t kHeader = 10;            // bytes of the shortest header of a member
constexpr std::size_t kGrowth = 4;

// Whether the first record of a long member ends long before what is there of its text: then many records are in it.
bool HoldsMany(std::string_view text) {
  WarcHead head;
  return ParseWarcHead(text, head) == WarcHeadOutcome::kHead && head.length && *head.length < text.size() / 2;
}

}  // namespace

Status MemberReader::Fill(const ReadableFile& file, std::size_t size) {
  if (end_ - at_ >= size || file_ended_) return Status::Ok();
  if (size > capacity_) {
    auto window = std::make_unique_for_overwrite<char[]>(size);
    if (end_ > at_) std::memcpy(window.get(), window_.get() + at_, end_ - at_);
    window_ = std::move(window);
    capacity_ = size;
  } else {
    std::memmove(window_.get(), window_.get() + at_, end_ - at_);
  }
  offset_ += at_;
  end_ -= at_;
  at_ = 0;
  const Result<std::size_t> got = file.ReadAt(offset_ + end_, window_.get() + end_, size - end_);
  if (!got.ok()) return got.status();
  file_ended_ = got.value() < size - end_;
  end_ += got.value();
  return Status::Ok();
}

Result<MemberSpan> MemberReader::Read(const ReadableFile& file, std::uint64_t begin, std::uint64_t limit, bool sure,
                                      const std::function<void(const WarcRecord& record)>& each) {
  offset_ = begin;
  at_ = end_ = 0;
  file_ended_ = false;
  const auto size = static_cast<std::size_t>(limit - begin);
  if (const Status filled = Fill(file, size + kSlack); !filled.ok()) return filled;
  MemberSpan span{limit, limit, false};
  if (!sure && !FindMember(size)) return span;
  for (span.begin = offset_ + at_; offset_ + at_ < limit;) {
    const Result<Outcome> outcome = ReadMember(file);
    if (!outcome.ok()) return outcome.status();
    span.stream = outcome.value() == Outcome::kStream;
    if (outcome.value() != Outcome::kRead) break;
    for (const WarcRecord& record : records_) each(record);
  }
  span.end = offset_ + at_;
  return span;
}

Result<MemberReader::Outcome> MemberReader::ReadMember(const ReadableFile& file) {
  if (!text_) {
    text_ = std::make_unique_for_overwrite<char[]>(kFirstRoom);
    room_ = kFirstRoom;
  }
  if (const Status filled = Fill(file, kHeader); !filled.ok()) return filled;
  if (Rest().empty()) return Outcome::kEnd;
  if (!BeginsGzipMember(Rest())) return Outcome::kStream;
  for (;;) {
    const MemberInflater::Step step = inflater_->Inflate(Rest(), text_.get(), room_);
    if (step.outcome == MemberInflater::Outcome::kDone) {
      if (!TakeRecords({text_.get(), step.given})) return Outcome::kStream;
      at_ += step.taken;
      return Outcome::kRead;
    }
    if (step.outcome == MemberInflater::Outcome::kNoRoom) {
      if (room_ * kGrowth > most_room_ || HoldsMany({text_.get(), room_})) return Outcome::kStream;
      text_ = std::make_unique_for_overwrite<char[]>(room_ * kGrowth);
      room_ *= kGrowth;
      continue;
    }
    // It may go on behind the window.
    const std::size_t there = Rest().size();
    if (file_ended_ || there >= kMostMember) return Outcome::kStream;
    if (const Status filled = Fill(file, std::max(kSlack, there * 2)); !filled.ok()) return filled;
  }
}

// False where the text is more or less than sound records.
bool MemberReader::TakeRecords(std::string_view text) {
  records_.clear();
  while (!text.empty()) {
    const WarcPiece piece = NextWarcPiece(text, false);
    if (piece.kind == WarcPiece::Kind::kLost || piece.damaged) return false;
    text.remove_prefix(piece.size);
    if (piece.kind == WarcPiece::Kind::kRecord && MayHoldPage(piece.head)) {
      records_.push_back({piece.head, piece.block.substr(0, kMostBlock)});
    }
  }
  return true;
}

bool MemberReader::FindMember(std::size_t size) {
  const std::string_view window(window_.get(), end_);
  for (at_ = window.find("\x1F\x8B\x08"); at_ < size; at_ = window.find("\x1F\x8B\x08", at_ + 1)) {
    if (!BeginsGzipMember(Rest())) continue;
    std::array<char, 64> text;
    trial_->Begin();
    const StreamInflater::Step step = trial_->Inflate(Rest(), text.data(), text.size());
    if (step.outcome == StreamInflater::Outcome::kBroken) continue;
    const std::string_view begin(text.data(), step.given);
    if (begin.size() > 6 && BeginsWarcHead(begin)) return true;
  }
  at_ = 0;
  return false;
}

}  // namespace quenlar
