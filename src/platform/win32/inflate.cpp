// Both ways by zlib.
#include "platform/inflate.h"

#include <algorithm>
#include <new>

#include <zlib.h>

namespace quenlar {
namespace {

constexpr int kGzipWindow = 15 + 16;
constexpr std::size_t kMost = 1u << 30;  // of one call: zlib counts in 32 bits

class ZlibInflater final : public StreamInflater {
 public:
  ZlibInflater() {
    if (inflateInit2(&stream_, kGzipWindow) != Z_OK) throw std::bad_alloc();
  }
  ~ZlibInflater() override { inflateEnd(&stream_); }
  ZlibInflater(const ZlibInflater&) = delete;
  ZlibInflater& operator=(const ZlibInflater&) = delete;

  void Begin() override { inflateReset(&stream_); }

  [[nodiscard]] Step Inflate(std::string_view in, char* out, std::size_t room) override {
    const auto size_in = static_cast<uInt>(std::min(in.size(), kMost));
    const auto size_out = static_cast<uInt>(std::min(room, kMost));
    stream_.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(in.data()));  // zlib only reads it
    stream_.avail_in = size_in;
    stream_.next_out = reinterpret_cast<Bytef*>(out);
    stream_.avail_out = size_out;
    const int result = inflate(&stream_, Z_NO_FLUSH);
    const Outcome outcome = result == Z_STREAM_END                    ? Outcome::kEnd
                            : result == Z_OK || result == Z_BUF_ERROR ? Outcome::kGoesOn
                                                                      : Outcome::kBroken;
    return {outcome, size_in - stream_.avail_in, size_out - stream_.avail_out};
  }

 private:
  z_stream stream_{};
};

class ZlibMemberInflater final : public MemberInflater {
 public:
  [[nodiscard]] Step Inflate(std::string_view in, char* out, std::size_t room) override {
    stream_.Begin();
    const StreamInflater::Step step = stream_.Inflate(in, out, room);
    if (step.outcome == StreamInflater::Outcome::kEnd) return {Outcome::kDone, step.taken, step.given};
    const bool full = step.outcome == StreamInflater::Outcome::kGoesOn && step.given == room;
    return {full ? Outcome::kNoRoom : Outcome::kBroken, 0, 0};
  }

 private:
  ZlibInflater stream_;
};

}  // namespace

std::unique_ptr<MemberInflater> MakeMemberInflater() { return std::make_unique<ZlibMemberInflater>(); }
std::unique_ptr<StreamInflater> MakeStreamInflater() { return std::make_unique<ZlibInflater>(); }
std::unique_ptr<StreamInflater> MakeBrotliInflater() { return nullptr; }
std::unique_ptr<StreamInflater> MakeZstdInflater(std::string_view) { return nullptr; }

}  // namespace quenlar
