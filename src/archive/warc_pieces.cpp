#include "archive/warc_pieces.h"

#include <algorithm>

namespace quenlar {
namespace {

constexpr std::size_t kNone = std::string_view::npos;
constexpr std::size_t kMark = 6;  // bytes that show whether a head begins: "WARC/1"

std::size_t PassBlanks(std::string_view text, std::size_t at) {
  while (at < text.size() && (text[at] == '\r' || text[at] == '\n' || text[at] == '\0')) ++at;
  return at;
}

WarcPiece More(std::size_t droppable) {
  WarcPiece piece;
  piece.kind = WarcPiece::Kind::kMore;
  piece.size = droppable;
  return piece;
}

// No head stands at text[at].
WarcPiece Lost(std::string_view text, std::size_t at, bool more) {
  WarcPiece piece;
  piece.kind = WarcPiece::Kind::kLost;
  const std::size_t next = FindWarcHead(text, at + 1);
  // The last bytes may be the first ones of a head.
  piece.size = next != kNone ? next : more ? text.size() - std::min(kMark, text.size() - at - 1) : text.size();
  return piece;
}

// The record's length leads to no place where a record may end, or behind the end of the text.
WarcPiece Damaged(std::string_view text, std::size_t at, const WarcHead& head, bool more) {
  const std::size_t begin = at + head.size;
  const std::size_t next = FindWarcHead(text, begin);
  if (next == kNone && more && text.size() - at < kWarcWindow) return More(at);
  WarcPiece piece;
  piece.kind = WarcPiece::Kind::kRecord;
  piece.head = head;
  piece.size = next == kNone ? text.size() : next;
  piece.block = text.substr(begin, piece.size - begin);
  piece.damaged = true;
  return piece;
}

}  // namespace

bool IsWarcBlank(std::string_view text) { return PassBlanks(text, 0) == text.size(); }

WarcPiece NextWarcPiece(std::string_view text, bool more) {
  const std::size_t at = PassBlanks(text, 0);
  if (at == text.size()) {
    WarcPiece end;
    end.size = at;
    return more ? More(at) : end;
  }
  WarcPiece piece;
  WarcHead& head = piece.head;
  const WarcHeadOutcome outcome = ParseWarcHead(text.substr(at), head);
  if (outcome == WarcHeadOutcome::kCut && more) return More(at);
  if (outcome != WarcHeadOutcome::kHead) return Lost(text, at, more);
  if (!head.length) return Damaged(text, at, head, more);

  const std::size_t begin = at + head.size;
  const bool whole = *head.length <= text.size() - begin;
  piece.block = text.substr(begin, whole ? static_cast<std::size_t>(*head.length) : kNone);
  if (!whole) {
    if (!more) return Damaged(text, at, head, more);
    if (text.size() - at < kWarcWindow) return More(at);
    piece.kind = WarcPiece::Kind::kLarge;
    piece.size = text.size();
    return piece;
  }
  piece.size = PassBlanks(text, begin + piece.block.size());
  const std::string_view behind = text.substr(piece.size, kMark);
  if (more && behind.size() < kMark && BeginsWarcHead(behind)) return More(at);
  if (!behind.empty() && !BeginsWarcHead(behind)) return Damaged(text, at, head, more);
  piece.kind = WarcPiece::Kind::kRecord;
  return piece;
}

}  // namespace quenlar
