#include "platform/answer_head.h"

#include <algorithm>

#include "base/ascii.h"
#include "platform/page_fetcher.h"

namespace quenlar {
namespace {

bool IsRedirect(int status) {
  return status == 301 || status == 302 || status == 303 || status == 307 || status == 308;
}

}  // namespace

std::optional<int> ParseStatusLine(std::string_view line) {
  const std::size_t blank = line.find(' ');
  if (!line.starts_with("HTTP/") || blank == line.npos) return std::nullopt;
  const std::string_view version = line.substr(5, blank - 5);
  const std::string_view code = line.substr(blank + 1, 3);
  const std::string_view rest = line.substr(std::min(blank + 4, line.size()));
  if (version.empty() || version.find_first_not_of("0123456789.") != version.npos) return std::nullopt;
  if (code.size() != 3 || code[0] < '1' || code[0] > '9' || !IsDigit(code[1]) || !IsDigit(code[2])) return std::nullopt;
  if (!rest.empty() && rest.front() != ' ') return std::nullopt;
  return (code[0] - '0') * 100 + (code[1] - '0') * 10 + (code[2] - '0');
}

std::optional<std::uint64_t> ParseContentLength(std::string_view value) {
  if (value.empty() || value.size() > 18 || value.find_first_not_of("0123456789") != value.npos) return std::nullopt;
  std::uint64_t length = 0;
  for (const char c : value) length = length * 10 + static_cast<std::uint64_t>(c - '0');
  return length;
}

std::optional<ContentCoding> ParseContentCoding(std::string_view value) {
  if (value.empty() || EqualsIgnoreCase(value, "identity")) return ContentCoding::kIdentity;
  if (EqualsIgnoreCase(value, "gzip") || EqualsIgnoreCase(value, "x-gzip")) return ContentCoding::kGzip;
  if (EqualsIgnoreCase(value, "deflate")) return ContentCoding::kDeflate;
  return std::nullopt;
}

std::string_view TrimHeaderBlanks(std::string_view text) {
  const auto first = text.find_first_not_of(" \t");
  if (first == text.npos) return "";
  return text.substr(first, text.find_last_not_of(" \t") - first + 1);
}

bool AnswerHead::AddLine(std::string_view line) {
  bytes_ += line.size();
  if (bytes_ > kMaxHeadBytes) return false;
  while (!line.empty() && (line.back() == '\n' || line.back() == '\r')) line.remove_suffix(1);
  if (!started_) return StartAnswer(line);
  if (complete_) return true;  // a trailer
  if (line.empty()) {
    complete_ = status_ >= 200;
    started_ = complete_;  // after an interim answer comes another
    if (!IsRedirect(status_)) location_.clear();
    return true;
  }
  const std::size_t colon = line.find(':');
  if (colon == line.npos || line.front() == ' ' || line.front() == '\t') return true;
  return AddHeader(line.substr(0, colon), TrimHeaderBlanks(line.substr(colon + 1)));
}

bool AnswerHead::StartAnswer(std::string_view status_line) {
  const auto status = ParseStatusLine(status_line);
  if (!status) return false;
  const std::size_t bytes = bytes_;
  *this = AnswerHead();
  bytes_ = bytes;
  started_ = true;
  status_ = *status;
  return status_ != 407;
}

bool AnswerHead::AddHeader(std::string_view name, std::string_view value) {
  if (EqualsIgnoreCase(name, "content-length")) {
    if (content_length_) return false;
    content_length_ = ParseContentLength(value);
    return content_length_ && *content_length_ <= kMaxBodyBytes;
  }
  if (EqualsIgnoreCase(name, "content-encoding")) {
    const auto coding = ParseContentCoding(value);
    if (!coding || (coding_ != ContentCoding::kIdentity && *coding != ContentCoding::kIdentity)) return false;
    if (*coding != ContentCoding::kIdentity) coding_ = *coding;
    return true;
  }
  if (EqualsIgnoreCase(name, "transfer-encoding")) {
    const bool chunked = EqualsIgnoreCase(value, "chunked");
    if (!chunked && !value.empty() && !EqualsIgnoreCase(value, "identity")) return false;
    if (chunked && chunked_) return false;
    chunked_ = chunked_ || chunked;
    return true;
  }
  if (EqualsIgnoreCase(name, "location") && location_.empty()) location_ = value;
  return location_.size() <= kMaxHeadBytes;
}

}  // namespace quenlar
