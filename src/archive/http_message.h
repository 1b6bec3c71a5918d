// An HTTP answer as an archive holds it, whatever its head says of its length.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace quenlar {

enum class BodyCoding { kGzip, kDeflate, kBrotli, kZstd };

// Views into the block of the record.
struct HttpMessage {
  int status = 0;
  std::string_view content_type;            // empty without one
  std::vector<std::string> robots_headers;  // values of X-Robots-Tag
  std::vector<BodyCoding> codings;          // in the order in which they were applied
  bool known_codings = true;                // false: the body is in a coding that nobody here knows
  bool chunked = false;
  std::string_view body;  // as it was sent
};

// Interim answers (1xx) are passed over. False where `block` is not an answer.
[[nodiscard]] bool ParseHttpMessage(std::string_view block, HttpMessage& message);

// The body without its chunks; what is not in chunks, whatever its head says, stays as it is. A view of `storage` or of
// `body`.
[[nodiscard]] std::string_view WithoutChunks(std::string_view body, std::string& storage);

// The body without its codings, at most `limit` bytes of it; where it is cut or damaged, what stands before that. A
// coding whose first bytes are not there was taken off before, and nothing is done. A view of one of the storages or of
// `body`. False where the coding is not known here.
[[nodiscard]] bool DecodeBody(const HttpMessage& message, std::size_t limit, std::string& storage,
                              std::string_view& decoded);

}  // namespace quenlar
