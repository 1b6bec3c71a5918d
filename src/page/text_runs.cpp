#include "page/text_runs.h"

#include <algorithm>
#include <cstdint>

#include "base/byte_search.h"
#include "page/references.h"

namespace quenlar {

void TextRuns::HandOn(bool reversed) {
  constexpr std::size_t kNone = std::string_view::npos;
  const std::string_view whole = page_.substr(pieces_.front().begin, pieces_.front().end - pieces_.front().begin);
  const bool plain =
      FindByte(whole, '\0') == kNone && (!pieces_.front().has_references || FindByte(whole, '&') == kNone);
  finder_.SetPlace(pieces_.front().begin);
  if (pieces_.size() == 1 && plain) return finder_.Text({whole, {}, reversed, false});

  text_.clear();
  joints_.clear();
  for (const Piece& piece : pieces_) {
    if (piece.joint) joints_.push_back({static_cast<std::uint32_t>(text_.size()), piece.hidden_joint, piece.begin});
    const std::string_view raw = page_.substr(piece.begin, piece.end - piece.begin);
    const std::size_t begin = text_.size();
    if (piece.has_references)
      AppendDecoded(raw, ReferencePlace::kText, text_);
    else
      text_ += raw;
    // A browser leaves NULs out of text.
    const auto added = text_.begin() + static_cast<std::ptrdiff_t>(begin);
    text_.erase(std::remove(added, text_.end(), '\0'), text_.end());
  }
  finder_.Text({text_, joints_, reversed, false});
}

}  // namespace quenlar
