// Whole members by libdeflate, which is the fastest but gives nothing of a torn one; pieces by ISA-L.
#include "platform/inflate.h"

#include <algorithm>
#include <cstdint>
#include <new>

#include <isa-l/igzip_lib.h>
#include <libdeflate.h>

namespace quenlar {
namespace {

class LibdeflateInflater final : public MemberInflater {
 public:
  LibdeflateInflater() : decompressor_(libdeflate_alloc_decompressor()) {
    if (!decompressor_) throw std::bad_alloc();
  }

  [[nodiscard]] Step Inflate(std::string_view in, char* out, std::size_t room) override {
    Step step{Outcome::kBroken, 0, 0};
    const libdeflate_result result =
        libdeflate_gzip_decompress_ex(decompressor_.get(), in.data(), in.size(), out, room, &step.taken, &step.given);
    if (result == LIBDEFLATE_SUCCESS) step.outcome = Outcome::kDone;
    if (result == LIBDEFLATE_INSUFFICIENT_SPACE) step.outcome = Outcome::kNoRoom;
    return step;
  }

 private:
  struct Free {
    void operator()(libdeflate_decompressor* decompressor) const { libdeflate_free_decompressor(decompressor); }
  };
  const std::unique_ptr<libdeflate_decompressor, Free> decompressor_;
};

class IsalInflater final : public StreamInflater {
 public:
  IsalInflater() : state_(std::make_unique<inflate_state>()) { IsalInflater::Begin(); }

  void Begin() override {
    isal_inflate_init(state_.get());
    state_->crc_flag = ISAL_GZIP;
  }

  [[nodiscard]] Step Inflate(std::string_view in, char* out, std::size_t room) override {
    const auto size_in = static_cast<std::uint32_t>(std::min(in.size(), kMost));
    const auto size_out = static_cast<std::uint32_t>(std::min(room, kMost));
    state_->next_in = reinterpret_cast<std::uint8_t*>(const_cast<char*>(in.data()));  // it is only read
    state_->avail_in = size_in;
    state_->next_out = reinterpret_cast<std::uint8_t*>(out);
    state_->avail_out = size_out;
    const int result = isal_inflate(state_.get());
    Step step{Outcome::kGoesOn, size_in - state_->avail_in, size_out - state_->avail_out};
    if (result < 0) {
      step.outcome = Outcome::kBroken;
    } else if (state_->block_state == ISAL_BLOCK_FINISH) {
      step.outcome = Outcome::kEnd;
    }
    return step;
  }

 private:
  static constexpr std::size_t kMost = 1u << 30;  // of one call: the library counts in 32 bits
  const std::unique_ptr<inflate_state> state_;
};

}  // namespace

std::unique_ptr<MemberInflater> MakeMemberInflater() { return std::make_unique<LibdeflateInflater>(); }
std::unique_ptr<StreamInflater> MakeStreamInflater() { return std::make_unique<IsalInflater>(); }

}  // namespace quenlar
