// Parts a text of WARC records, sound or damaged, into records.
#pragma once

#include <cstddef>
#include <string_view>

#include "archive/warc_head.h"

namespace quenlar {

// What stands at the beginning of a text.
struct WarcPiece {
  enum class Kind {
    kRecord,  // a record, see `head` and `block`
    kLost,    // bytes that belong to no record
    kMore,    // the beginning of something: more of the text is needed
    kLarge,   // a record that is longer than kWarcWindow: only its beginning is in the text
    kEnd,     // nothing, or blanks alone
  };
  Kind kind = Kind::kEnd;
  std::size_t size = 0;    // bytes that the piece takes, blanks around it included; of kMore those that can be dropped
  WarcHead head;           // of kRecord and kLarge
  std::string_view block;  // of kRecord; of kLarge as much of it as is there
  bool damaged = false;    // of kRecord: it is torn, or what follows it is not the beginning of a record
};

// A damaged record is looked through no further than this for the next head, and so much of a record is looked at.
inline constexpr std::size_t kWarcWindow = 64u << 20;

// `more` says whether the text may go on. A record is sound when blanks (line ends and NULs) and the next head follow
// it, or the end of the text. Behind a record that is not, the next sound head counts that stands behind the record's
// own head, because its length cannot be trusted; the record's block ends there.
[[nodiscard]] WarcPiece NextWarcPiece(std::string_view text, bool more);

// Whether nothing but blanks stands in `text`.
[[nodiscard]] bool IsWarcBlank(std::string_view text);

}  // namespace quenlar
