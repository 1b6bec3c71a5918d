#include "web/page_matches.h"

#include "base/byte_search.h"

namespace quenlar {
namespace {

constexpr std::size_t kNone = std::string_view::npos;

// Returns the first address of a match. `sign` is the first "@" in it that makes a match.
std::string_view FirstAddress(std::string_view page, std::size_t end, const AddressSign& sign) {
  return sign.address.empty() ? NextAddress(page.substr(0, end), sign.at + 1) : sign.address;
}

}  // namespace

bool PageMatches::Next(PageMatch& match) {
  for (;;) {
    if (between_waits_) {
      between_waits_ = false;
      if (BetweenMatch(match)) return true;
    }
    sign_ = FindAddressSign(page_, end_);
    if (sign_.at == kNone) {
      end_ = page_.size();
      return false;
    }
    if (NextSegment(match)) return true;
  }
}

// Finds the ends of the segment around `sign_`, which lies behind the segment before. Returns whether its tag matches.
bool PageMatches::NextSegment(PageMatch& match) {
  const std::size_t open = FindLastByte(page_, '<', end_, sign_.at);
  const std::size_t close = FindByte(page_, '<', sign_.at);
  opened_ = open != kNone;
  begin_ = opened_ ? open : 0;
  end_ = close == kNone ? page_.size() : close;
  between_waits_ = close != kNone;
  return opened_ && TagMatch(match);
}

// The tag ends at the first ">" behind the first "@" of the segment, even when a later "@" makes the match.
bool PageMatches::TagMatch(PageMatch& match) const {
  const std::size_t close = FindByte(page_.substr(0, end_), '>', sign_.at);
  if (close == kNone) return false;
  match.place = PageMatch::Place::kInTag;
  match.text = page_.substr(begin_, close + 1 - begin_);
  match.address = FirstAddress(page_, close, sign_);
  return true;
}

// The text begins at the first ">" of the segment, and an "@" must follow in it.
bool PageMatches::BetweenMatch(PageMatch& match) const {
  const std::size_t start = FindByte(page_.substr(0, end_), '>', begin_);
  if (start == kNone) return false;
  const AddressSign sign = start < sign_.at ? sign_ : FindAddressSign(page_.substr(0, end_), start);
  if (sign.at == kNone) return false;
  match.place = PageMatch::Place::kBetweenTags;
  match.text = page_.substr(start, end_ + 1 - start);
  match.address = FirstAddress(page_, end_, sign);
  return true;
}

}  // namespace quenlar
