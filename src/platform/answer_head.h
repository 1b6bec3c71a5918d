// The head of an HTTP answer, and what of it lets a download fail.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "platform/content_decoder.h"

namespace quenlar {

// All header lines of one answer, those of interim answers (1xx) included.
inline constexpr std::size_t kMaxHeadBytes = 256 * 1024;

// The parts of heads, for all who read them.

// The status of "HTTP/1.1 200 OK", "HTTP/1.1 200" or "HTTP/2 200", 100 to 999; empty when the line is none of these.
[[nodiscard]] std::optional<int> ParseStatusLine(std::string_view line);
// Empty when the value is not a number of at most 18 digits.
[[nodiscard]] std::optional<std::uint64_t> ParseContentLength(std::string_view value);
// Empty for every coding but gzip and deflate.
[[nodiscard]] std::optional<ContentCoding> ParseContentCoding(std::string_view value);
// Cuts blanks and tabs at both ends.
[[nodiscard]] std::string_view TrimHeaderBlanks(std::string_view text);

// Fed line by line. Lines that are no headers (without a colon, folded) are passed over. What fails: a status line that
// is none, more than kMaxHeadBytes, a Content-Length that is no number, comes twice or is above kMaxBodyBytes, a
// Content-Encoding other than one of gzip and deflate, a Transfer-Encoding other than chunked, the status 407.
class AnswerHead {
 public:
  // One line with or without its line end; the empty line ends the head. False when the download must fail.
  [[nodiscard]] bool AddLine(std::string_view line);

  // True after the empty line of a final answer (200 and above).
  [[nodiscard]] bool complete() const { return complete_; }
  [[nodiscard]] int status() const { return status_; }
  [[nodiscard]] ContentCoding coding() const { return coding_; }
  // The announced length of the body as it is sent; empty when there is none, or when the body is sent in chunks.
  [[nodiscard]] std::optional<std::uint64_t> content_length() const {
    return chunked_ ? std::nullopt : content_length_;
  }
  [[nodiscard]] bool chunked() const { return chunked_; }
  // The redirect's target as it stands in the header; empty when the answer is not a redirect.
  [[nodiscard]] const std::string& location() const { return location_; }

 private:
  [[nodiscard]] bool StartAnswer(std::string_view status_line);
  [[nodiscard]] bool AddHeader(std::string_view name, std::string_view value);

  std::size_t bytes_ = 0;
  bool started_ = false, complete_ = false, chunked_ = false;
  int status_ = 0;
  ContentCoding coding_ = ContentCoding::kIdentity;
  std::optional<std::uint64_t> content_length_;
  std::string location_;
};

}  // namespace quenlar
