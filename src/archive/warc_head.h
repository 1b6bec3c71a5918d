// The head of a WARC record (ISO 28500): a version line, named fields, an empty line.
//
//   WARC/1.1
//   WARC-Type: response
//   WARC-Target-URI: http://www.example.org/
//   WARC-Date: 2026-11-22T13:20:32Z
//   Content-Type: application/http;msgtype=response
//   Content-Length: 1234
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>

namespace quenlar {

// Views into the text. A field that the head lacks is empty; of a field that comes twice the first one counts.
struct WarcHead {
  std::string_view type, target, date, content_type;  // the target without the "<>" that some programs put around it
  std::optional<std::uint64_t> length;                // of the block that follows; empty where it is not a number
  std::size_t size = 0;                               // of the head, with its empty line
};

enum class WarcHeadOutcome {
  kHead,
  kNotOne,
  kCut,  // the text ends within what may be a head
};

inline constexpr std::size_t kMostWarcHead = 64 * 1024;  // bytes; what is longer is not a head

// Reads the head at the beginning of `text`. Lines may end in CR LF or in LF, and lines that are not fields are passed
// over.
[[nodiscard]] WarcHeadOutcome ParseWarcHead(std::string_view text, WarcHead& head);

// The place of the next head in `text` at or behind `from` that is sound: all of its lines are fields, and it has a
// type and a length. Also the place of a head that is cut by the end of the text and sound so far. npos without one.
// Takes linear time.
[[nodiscard]] std::size_t FindWarcHead(std::string_view text, std::size_t from);

// Whether `text` begins as a head does; a shorter text than a version line may do so too.
[[nodiscard]] bool BeginsWarcHead(std::string_view text);

}  // namespace quenlar
