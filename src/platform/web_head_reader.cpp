#include "platform/web_head_reader.h"

#include "base/ascii.h"
#include "platform/answer_head.h"

namespace quenlar {

bool WebHeadReader::AddLine(std::string_view line) {
  bytes_ += line.size();
  if (bytes_ > kMaxHeadBytes) return false;
  if (complete_) return true;  // a trailer
  while (!line.empty() && (line.back() == '\n' || line.back() == '\r')) line.remove_suffix(1);
  if (!started_) {
    const auto status = ParseStatusLine(line);
    if (!status) return false;
    const std::uint64_t bytes = bytes_;
    *this = WebHeadReader();
    bytes_ = bytes;
    started_ = true;
    head_.status = *status;
    return true;
  }
  if (line.empty()) {
    complete_ = head_.status >= 200;
    started_ = complete_;  // after an interim answer comes another
    return true;
  }
  const std::size_t colon = line.find(':');
  if (colon == line.npos || line.front() == ' ' || line.front() == '\t') return true;
  return AddField(line.substr(0, colon), TrimHeaderBlanks(line.substr(colon + 1)));
}

bool WebHeadReader::AddField(std::string_view name, std::string_view value) {
  head_.fields.emplace_back(name, value);
  if (EqualsIgnoreCase(name, "content-length")) {
    if (content_length_) return false;
    content_length_ = ParseContentLength(value);
    return content_length_.has_value();
  }
  if (EqualsIgnoreCase(name, "content-encoding")) {
    const auto coding = ParseContentCoding(value);
    if (coding == ContentCoding::kIdentity) return true;
    const bool second = coding_ != ContentCoding::kIdentity;
    coding_ = second ? std::nullopt : coding;
  }
  if (EqualsIgnoreCase(name, "transfer-encoding")) {
    if (EqualsIgnoreCase(value, "identity")) return true;
    if (!EqualsIgnoreCase(value, "chunked") || chunked_) return false;
    chunked_ = true;
  }
  return true;
}

}  // namespace quenlar
