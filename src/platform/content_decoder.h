// The body of an HTTP answer as it was before it was compressed.
#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>

namespace quenlar {

enum class ContentCoding { kIdentity, kGzip, kDeflate };

// Decodes piece by piece, with memory for a small window beside what it gives out.
class ContentDecoder {
 public:
  // No more than `max_bytes` are taken, and no more given out.
  ContentDecoder(ContentCoding coding, std::size_t max_bytes);
  ~ContentDecoder();
  ContentDecoder(const ContentDecoder&) = delete;
  ContentDecoder& operator=(const ContentDecoder&) = delete;

  // Appends what `bytes` decode to. False, for this and every later call, when they are not of the coding or there are
  // more than `max_bytes`. What follows the end of the compressed data is passed over. Throws std::bad_alloc when
  // memory does not hold it; then nothing more can be added.
  [[nodiscard]] bool Add(std::string_view bytes, std::string& out);

  // True when the data has come to its end; no data at all is an empty body.
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
  bool ended_ = false;     // something else follows the end, and all that is still to come with it
  bool drained_ = true;    // the last block was not full, so the decoder holds nothing back
  std::string held_back_;  // the first byte of "deflate", until the second one tells which of two forms it has
  std::unique_ptr<Inflater> inflater_;
};

}  // namespace quenlar
