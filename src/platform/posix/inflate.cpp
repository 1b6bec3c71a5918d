// Whole members by libdeflate, which is the fastest but gives nothing of a torn one; pieces by ISA-L. Brotli and zstd
// by their own libraries.
#include "platform/inflate.h"

#include <algorithm>
#include <cstdint>
#include <new>

#include <brotli/decode.h>
#include <isa-l/igzip_lib.h>
#include <libdeflate.h>
#include <zstd.h>

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

class BrotliInflater final : public StreamInflater {
 public:
  BrotliInflater() { BrotliInflater::Begin(); }

  void Begin() override {
    state_.reset(BrotliDecoderCreateInstance(nullptr, nullptr, nullptr));
    if (!state_) throw std::bad_alloc();
  }

  [[nodiscard]] Step Inflate(std::string_view in, char* out, std::size_t room) override {
    std::size_t left_in = in.size(), left_out = room;
    auto* next_in = reinterpret_cast<const std::uint8_t*>(in.data());
    auto* next_out = reinterpret_cast<std::uint8_t*>(out);
    const BrotliDecoderResult result =
        BrotliDecoderDecompressStream(state_.get(), &left_in, &next_in, &left_out, &next_out, nullptr);
    const Outcome outcome = result == BROTLI_DECODER_RESULT_SUCCESS ? Outcome::kEnd
                            : result == BROTLI_DECODER_RESULT_ERROR ? Outcome::kBroken
                                                                    : Outcome::kGoesOn;
    return {outcome, in.size() - left_in, room - left_out};
  }

 private:
  struct Free {
    void operator()(BrotliDecoderState* state) const { BrotliDecoderDestroyInstance(state); }
  };
  std::unique_ptr<BrotliDecoderState, Free> state_;
};

class ZstdInflater final : public StreamInflater {
 public:
  explicit ZstdInflater(std::string_view dictionary) : context_(ZSTD_createDCtx()) {
    if (!context_) throw std::bad_alloc();
    // A dictionary that is none makes every frame that wants one fail.
    if (!dictionary.empty()) ZSTD_DCtx_loadDictionary(context_.get(), dictionary.data(), dictionary.size());
    ZSTD_DCtx_setParameter(context_.get(), ZSTD_d_windowLogMax, kMostWindow);
  }

  void Begin() override { ZSTD_DCtx_reset(context_.get(), ZSTD_reset_session_only); }

  [[nodiscard]] Step Inflate(std::string_view in, char* out, std::size_t room) override {
    ZSTD_inBuffer from{in.data(), in.size(), 0};
    ZSTD_outBuffer to{out, room, 0};
    const std::size_t result = ZSTD_decompressStream(context_.get(), &to, &from);
    const Outcome outcome = ZSTD_isError(result) != 0 ? Outcome::kBroken
                            : result == 0             ? Outcome::kEnd
                                                      : Outcome::kGoesOn;
    return {outcome, from.pos, to.pos};
  }

 private:
  static constexpr int kMostWindow = 26;  // 64 MiB: a frame cannot make the program take more memory
  struct Free {
    void operator()(ZSTD_DCtx* context) const { ZSTD_freeDCtx(context); }
  };
  const std::unique_ptr<ZSTD_DCtx, Free> context_;
};

}  // namespace

std::unique_ptr<MemberInflater> MakeMemberInflater() { return std::make_unique<LibdeflateInflater>(); }
std::unique_ptr<StreamInflater> MakeStreamInflater() { return std::make_unique<IsalInflater>(); }
std::unique_ptr<StreamInflater> MakeBrotliInflater() { return std::make_unique<BrotliInflater>(); }
std::unique_ptr<StreamInflater> MakeZstdInflater(std::string_view dictionary) {
  return std::make_unique<ZstdInflater>(dictionary);
}

}  // namespace quenlar
