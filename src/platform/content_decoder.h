// Decodes the body of an HTTP answer: what it was before it was compressed.
#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>

namespace quenlar {

enum class ContentCoding { kIdentity, kGzip, kDeflate };

// Decodes piece by piece. Besides the output it needs memory for a small window only.
class ContentDecoder {
 public:
  // `max_bytes` limits the bytes taken and the bytes given out, each for itself.
  ContentDecoder(ContentCoding coding, std::size_t max_bytes);
  ~ContentDecoder();
  ContentDecoder(const ContentDecoder&) = delete;
  ContentDecoder& operator=(const ContentDecoder&) = delete;

  // Decodes `bytes` and appends the result to `out`. Returns false when the bytes are not of the coding or a limit is
  // passed, and then at every later call. Bytes behind the end of the compressed data are passed over. Throws
  // std::bad_alloc; nothing more can be added then.
  [[nodiscard]] bool Add(std::string_view bytes, std::string& out);

  // Whether the data is complete. No data at all is a complete, empty body.
  [[nodiscard]] bool AtEnd() const;

 private:
  struct Inflater;
  [[nodiscard]] bool Inflate(std::string_view bytes, std::string& out);
  [[nodiscard]] bool InflateBlock(std::string& out);
  [[nodiscard]] bool Begin(std::string_view bytes);

  const ContentCoding coding_;
  const std::size_t max_bytes_;
  std::size_t taken_ = 0, given_ = 0;
  bool failed_ = false, at_end_ = false;
  bool ended_ = false;     // other bytes follow the end of the data; all later ones are passed over
  bool drained_ = true;    // the last block was not full, so the decoder holds nothing back
  std::string held_back_;  // the first byte of "deflate", until the second one tells which of two forms it has
  std::unique_ptr<Inflater> inflater_;
};

}  // namespace quenlar
