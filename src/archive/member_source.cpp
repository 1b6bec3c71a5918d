#include "archive/member_source.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <utility>

namespace quenlar {
namespace {

constexpr std::size_t kWindow = 1u << 20;  // bytes of packed data in memory
constexpr std::size_t kKept = 256u << 10;  // of these behind the place at hand, where the next member may begin
constexpr std::size_t kHeader = 10;        // bytes of the shortest header of a member
constexpr std::string_view kZstdMagic = "\x28\xB5\x2F\xFD";
constexpr std::size_t kTrial = 64u << 10;  // packed bytes that show whether a member unpacks

}  // namespace

bool BeginsGzipMember(std::string_view bytes) {
  constexpr unsigned char kReservedFlags = 0xE0;
  return bytes.size() >= kHeader && bytes[0] == '\x1F' && bytes[1] == '\x8B' && bytes[2] == '\x08' &&
         (static_cast<unsigned char>(bytes[3]) & kReservedFlags) == 0;
}

bool BeginsZstdFrame(std::string_view bytes) {
  if (bytes.size() < 4) return false;
  const bool skippable = bytes.substr(1, 3) == "\x2A\x4D\x18" && (bytes[0] & 0xF0) == 0x50;
  return skippable || bytes.starts_with(kZstdMagic);
}

Packing GzipPacking() {
  return {"\x1F\x8B\x08", BeginsGzipMember, [] { return MakeStreamInflater(); }};
}

Packing ZstdPacking(std::string dictionary) {
  return {kZstdMagic, BeginsZstdFrame, [dictionary = std::move(dictionary)] { return MakeZstdInflater(dictionary); }};
}

MemberSource::MemberSource(ByteSource& packed, std::uint64_t offset, Packing packing)
    : packed_(packed),
      packing_(std::move(packing)),
      inflater_(packing_.make()),
      trial_(packing_.make()),
      window_(std::make_unique_for_overwrite<char[]>(kWindow)),
      offset_(offset) {}

Status MemberSource::Fill(std::size_t size) {
  if (end_ - at_ >= size || packed_ended_) return Status::Ok();
  const std::size_t first = at_ - std::min(at_, kKept);
  std::memmove(window_.get(), window_.get() + first, end_ - first);
  offset_ += first;
  at_ -= first;
  end_ -= first;
  member_ -= std::min(member_, first);
  while (end_ < kWindow && end_ - at_ < std::max(size, kTrial) && !packed_ended_) {
    const Result<std::size_t> got = packed_.Read(window_.get() + end_, kWindow - end_);
    if (!got.ok()) return got.status();
    end_ += got.value();
    packed_ended_ = got.value() == 0;
  }
  return Status::Ok();
}

Result<std::size_t> MemberSource::Read(char* buffer, std::size_t size) {
  std::size_t given = 0;
  while (given < size && !ended_) {
    if (between_) {
      if (given > 0) break;
      const Result<bool> begun = BeginMember();
      if (!begun.ok()) return begun.status();
      if (!begun.value()) break;
    }
    if (const Status filled = Fill(1); !filled.ok()) return filled;
    const StreamInflater::Step step = inflater_->Inflate(Rest(), buffer + given, size - given);
    at_ += step.taken;
    given += step.given;
    between_ = step.outcome == StreamInflater::Outcome::kEnd;
    const bool torn = packed_ended_ && at_ == end_ && step.given == 0 && step.taken == 0;
    if (step.outcome == StreamInflater::Outcome::kBroken || (torn && !between_)) {
      if (const Status broken = Break(); !broken.ok()) return broken;
    }
  }
  return given;
}

Result<bool> MemberSource::BeginMember() {
  for (;;) {
    if (const Status filled = Fill(kHeader); !filled.ok()) return filled;
    while (at_ < end_ && window_[at_] == '\0') ++at_;
    if (end_ - at_ >= kHeader || packed_ended_) break;
  }
  if (at_ == end_) {
    ended_ = true;
    return false;
  }
  if (!packing_.begins(Rest())) {
    ++breaks_;
    return FindMember(at_);
  }
  member_ = at_ + 1;
  inflater_->Begin();
  between_ = false;
  return true;
}

Status MemberSource::Break() {
  ++breaks_;
  between_ = false;
  const std::size_t first = at_ - std::min(at_, kKept);
  return FindMember(std::max(first, member_)).status();
}

Result<bool> MemberSource::FindMember(std::size_t from) {
  at_ = from;
  for (;;) {
    if (const Status filled = Fill(kTrial); !filled.ok()) return filled;
    const std::string_view rest = Rest();
    const std::size_t magic = rest.find(packing_.magic);
    const bool far = !packed_ended_ && magic != rest.npos && rest.size() - magic < kTrial;
    if (magic != rest.npos && !far && Unpacks(rest.substr(magic))) {
      at_ += magic;
      member_ = at_ + 1;
      inflater_->Begin();
      between_ = false;
      return true;
    }
    if (magic == rest.npos && packed_ended_) {
      at_ = end_;
      ended_ = true;
      return false;
    }
    // A magic number near the end of the window is looked at again when more is there.
    at_ += magic == rest.npos ? rest.size() - std::min(rest.size(), packing_.magic.size() - 1)
           : far              ? magic
                              : magic + 1;
  }
}

bool MemberSource::Unpacks(std::string_view packed) {
  if (!packing_.begins(packed)) return false;
  std::array<char, 4096> text;
  trial_->Begin();
  const StreamInflater::Step step = trial_->Inflate(packed.substr(0, kTrial), text.data(), text.size());
  return step.outcome != StreamInflater::Outcome::kBroken && step.given > 0;
}

}  // namespace quenlar
