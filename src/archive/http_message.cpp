#include "archive/http_message.h"

#include <algorithm>
#include <optional>
#include <utility>

#include "archive/unpack_body.h"
#include "base/ascii.h"
#include "base/byte_search.h"
#include "platform/answer_head.h"

namespace quenlar {
namespace {

constexpr std::size_t kNone = std::string_view::npos;

std::string_view TakeLine(std::string_view& text) {
  const std::size_t end = std::min(FindByte(text, '\n'), text.size());
  std::string_view line = text.substr(0, end);
  text.remove_prefix(std::min(end + 1, text.size()));
  if (!line.empty() && line.back() == '\r') line.remove_suffix(1);
  return line;
}

std::optional<BodyCoding> CodingOf(std::string_view word) {
  if (EqualsIgnoreCase(word, "gzip") || EqualsIgnoreCase(word, "x-gzip")) return BodyCoding::kGzip;
  if (EqualsIgnoreCase(word, "deflate")) return BodyCoding::kDeflate;
  if (EqualsIgnoreCase(word, "br")) return BodyCoding::kBrotli;
  if (EqualsIgnoreCase(word, "zstd")) return BodyCoding::kZstd;
  return std::nullopt;
}

void AddCodings(std::string_view value, HttpMessage& message) {
  for (const std::string_view part : Split(value, ",")) {
    const std::string_view word = TrimHeaderBlanks(part);
    if (word.empty() || EqualsIgnoreCase(word, "identity")) continue;
    const auto coding = CodingOf(word);
    if (coding)
      message.codings.push_back(*coding);
    else
      message.known_codings = false;
  }
}

void TakeField(std::string_view line, HttpMessage& message) {
  const std::size_t colon = FindByte(line, ':');
  if (colon == kNone || line[0] == ' ' || line[0] == '\t') return;
  const std::string_view name = TrimHeaderBlanks(line.substr(0, colon));
  const std::string_view value = TrimHeaderBlanks(line.substr(colon + 1));
  if (EqualsIgnoreCase(name, "content-type")) {
    if (message.content_type.empty()) message.content_type = value;
  } else if (EqualsIgnoreCase(name, "x-robots-tag")) {
    message.robots_headers.emplace_back(value);
  } else if (EqualsIgnoreCase(name, "content-encoding")) {
    AddCodings(value, message);
  } else if (EqualsIgnoreCase(name, "transfer-encoding")) {
    // Other codings of the transfer are as rare as they are old: they are those of the content.
    for (const std::string_view part : Split(value, ",")) {
      const std::string_view word = TrimHeaderBlanks(part);
      if (EqualsIgnoreCase(word, "chunked"))
        message.chunked = true;
      else
        AddCodings(word, message);
    }
  }
}

// The size in the line before a chunk: hexadecimal digits, perhaps an extension behind them.
std::optional<std::size_t> ChunkSize(std::string_view line) {
  constexpr std::size_t kMostDigits = 15;
  std::size_t size = 0, digits = 0;
  while (digits < line.size()) {
    const char c = ToLower(line[digits]);
    if (!IsDigit(c) && (c < 'a' || c > 'f')) break;
    size = size * 16 + static_cast<std::size_t>(IsDigit(c) ? c - '0' : c - 'a' + 10);
    if (++digits > kMostDigits) return std::nullopt;
  }
  const std::string_view behind = TrimHeaderBlanks(line.substr(digits));
  if (digits == 0 || (!behind.empty() && behind[0] != ';')) return std::nullopt;
  return size;
}

}  // namespace

bool ParseHttpMessage(std::string_view block, HttpMessage& message) {
  do {
    message = HttpMessage();
    const auto status = ParseStatusLine(TakeLine(block));
    if (!status) return false;
    message.status = *status;
    while (!block.empty()) {
      const std::string_view line = TakeLine(block);
      if (line.empty()) break;
      TakeField(line, message);
    }
  } while (message.status < 200 && block.starts_with("HTTP/"));
  message.body = block;
  return true;
}

std::string_view WithoutChunks(std::string_view body, std::string& storage) {
  storage.clear();
  std::string_view rest = body;
  for (bool first = true; !rest.empty(); first = false) {
    const std::string_view here = rest;
    const std::optional<std::size_t> size = ChunkSize(TakeLine(rest));
    if (!size) {
      // Not in chunks, or not from here on.
      if (first) return body;
      storage += here;
      break;
    }
    if (*size == 0) break;
    storage += rest.substr(0, *size);
    rest.remove_prefix(std::min(*size, rest.size()));
    if (rest.starts_with("\r\n"))
      rest.remove_prefix(2);
    else if (rest.starts_with("\n"))
      rest.remove_prefix(1);
  }
  return storage;
}

bool DecodeBody(const HttpMessage& message, std::size_t limit, std::string& storage, std::string_view& decoded) {
  if (!message.known_codings) return false;
  std::string before;
  decoded = message.body;
  if (message.chunked) decoded = WithoutChunks(decoded, storage);
  for (auto coding = message.codings.rbegin(); coding != message.codings.rend(); ++coding) {
    std::string unpacked;
    const bool last = coding + 1 == message.codings.rend();
    const UnpackOutcome outcome = UnpackBody(*coding, decoded, last ? limit : 2 * limit, unpacked);
    if (outcome == UnpackOutcome::kUnknown) return false;
    if (outcome == UnpackOutcome::kNotPacked) continue;
    before = std::move(storage);  // `decoded` may be a view of it
    storage = std::move(unpacked);
    decoded = storage;
  }
  decoded = decoded.substr(0, limit);
  return true;
}

}  // namespace quenlar
