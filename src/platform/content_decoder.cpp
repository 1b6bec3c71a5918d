#include "platform/content_decoder.h"

#include <array>
#include <bit>

#include <zlib.h>

namespace quenlar {
namespace {

constexpr int kGzipWindow = 15 + 16, kZlibWindow = 15, kRawWindow = -15;

// "deflate" is the zlib format by the standard, and raw deflate data from some servers.
bool HasZlibHeader(std::string_view bytes) {
  const auto first = static_cast<unsigned char>(bytes[0]);
  const auto second = static_cast<unsigned char>(bytes[1]);
  return (first & 0x0F) == 8 && (first * 256 + second) % 31 == 0;
}

// Grows in powers of two. A body that reaches the limit is then moved for the last time at half of its size.
void Append(std::string_view bytes, std::string& out) {
  const std::size_t size = out.size() + bytes.size();
  if (size > out.capacity()) out.reserve(std::bit_ceil(size));
  out.append(bytes);
}

}  // namespace

struct ContentDecoder::Inflater {
  z_stream stream{};
  explicit Inflater(int window) : ok(inflateInit2(&stream, window) == Z_OK) {}
  Inflater(const Inflater&) = delete;
  Inflater& operator=(const Inflater&) = delete;
  ~Inflater() {
    if (ok) inflateEnd(&stream);
  }
  const bool ok;
};

ContentDecoder::ContentDecoder(ContentCoding coding, std::size_t max_bytes) : coding_(coding), max_bytes_(max_bytes) {}

ContentDecoder::~ContentDecoder() = default;

bool ContentDecoder::Add(std::string_view bytes, std::string& out) {
  taken_ += bytes.size();
  failed_ = failed_ || taken_ > max_bytes_;  // bytes that decode to nothing count too, and those behind the end
  if (failed_ || bytes.empty()) return !failed_;
  if (coding_ == ContentCoding::kIdentity) {
    Append(bytes, out);
  } else {
    failed_ = !Inflate(bytes, out);
  }
  return !failed_;
}

bool ContentDecoder::AtEnd() const {
  return !failed_ && (coding_ == ContentCoding::kIdentity || taken_ == 0 || at_end_);
}

bool ContentDecoder::Begin(std::string_view bytes) {
  const int window = coding_ == ContentCoding::kGzip ? kGzipWindow : HasZlibHeader(bytes) ? kZlibWindow : kRawWindow;
  inflater_ = std::make_unique<Inflater>(window);
  return inflater_->ok;
}

bool ContentDecoder::Inflate(std::string_view bytes, std::string& out) {
  std::string joined;
  if (!inflater_ && coding_ == ContentCoding::kDeflate) {
    joined = held_back_.append(bytes);
    if (joined.size() < 2) return true;
    bytes = joined;
  }
  if (!inflater_ && !Begin(bytes)) return false;
  z_stream& stream = inflater_->stream;
  stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(bytes.data()));  // zlib only reads it
  stream.avail_in = static_cast<uInt>(bytes.size());
  while (stream.avail_in > 0 || !drained_) {
    if (at_end_) {
      // Some servers compress piece by piece: another gzip member continues the body. Anything else is passed over.
      ended_ = ended_ || coding_ != ContentCoding::kGzip || *stream.next_in != 0x1F;
      if (ended_) return true;
      if (inflateReset(&stream) != Z_OK) return false;
      at_end_ = false;
    }
    if (!InflateBlock(out)) return false;
  }
  return true;
}

bool ContentDecoder::InflateBlock(std::string& out) {
  z_stream& stream = inflater_->stream;
  std::array<char, 32 * 1024> block;
  stream.next_out = reinterpret_cast<Bytef*>(block.data());
  stream.avail_out = block.size();
  const int result = inflate(&stream, Z_NO_FLUSH);
  const std::size_t size = block.size() - stream.avail_out;
  given_ += size;
  if (given_ > max_bytes_) return false;
  Append(std::string_view(block.data(), size), out);
  at_end_ = result == Z_STREAM_END;
  drained_ = at_end_ || stream.avail_out > 0;
  return at_end_ || result == Z_OK || result == Z_BUF_ERROR;
}

}  // namespace quenlar
