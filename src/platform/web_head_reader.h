// Reads the head of an answer line by line for the crawler, which wants all of its fields.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

#include "platform/content_decoder.h"
#include "platform/web_client.h"

namespace quenlar {

// Lines that are no headers (without a colon, folded) are passed over, and trailers too. What fails: a status line that
// is none, more than kMaxHeadBytes, a Content-Length that is no number or comes twice, a Transfer-Encoding other than
// chunked.
class WebHeadReader {
 public:
  // One line with or without its line end; the empty line ends the head. False when the answer is broken.
  [[nodiscard]] bool AddLine(std::string_view line);

  // True after the empty line of a final answer (200 and above).
  [[nodiscard]] bool complete() const { return complete_; }
  [[nodiscard]] const WebHead& head() const { return head_; }
  [[nodiscard]] WebHead& head() { return head_; }
  [[nodiscard]] std::uint64_t bytes() const { return bytes_; }
  // How the body is compressed; empty where it is in a way that was not asked for.
  [[nodiscard]] std::optional<ContentCoding> coding() const { return coding_; }
  // The announced length of the body as it is sent; empty when there is none, or when the body is sent in chunks.
  [[nodiscard]] std::optional<std::uint64_t> content_length() const {
    return chunked_ ? std::nullopt : content_length_;
  }
  [[nodiscard]] bool chunked() const { return chunked_; }

 private:
  [[nodiscard]] bool AddField(std::string_view name, std::string_view value);

  WebHead head_;
  std::uint64_t bytes_ = 0;  // interim answers included
  bool started_ = false, complete_ = false, chunked_ = false;
  std::optional<ContentCoding> coding_ = ContentCoding::kIdentity;
  std::optional<std::uint64_t> content_length_;
};

}  // namespace quenlar
