#include "page/jointed_text.h"

#include <algorithm>

#include "base/byte_search.h"
#include "page/protected_words.h"

namespace quenlar {

JointedText::JointedText(std::string_view text, std::span<const Joint> joints) : text_(text) {
  for (const Joint& joint : joints) {
    (joint.hidden ? hidden_ : tags_).push_back(joint.at);
    all_.push_back(joint.at);
  }
}

JointedText::Piece JointedText::Between(const std::vector<std::uint32_t>& joints, std::size_t sign) const {
  const auto behind = std::upper_bound(joints.begin(), joints.end(), sign);
  return {behind == joints.begin() ? 0 : behind[-1], behind == joints.end() ? text_.size() : *behind};
}

std::optional<AddressMatch> JointedText::In(Piece piece, std::size_t sign, const DomainRules& rules) const {
  const std::string_view text = text_.substr(piece.begin, piece.end - piece.begin);
  std::optional<AddressMatch> match = AddressAtSign(text, sign - piece.begin, rules);
  if (match) {
    match->begin += piece.begin;
    match->end += piece.begin;
  }
  return match;
}

std::optional<AddressMatch> JointedText::Whole(std::size_t sign, const DomainRules& rules) const {
  if (auto match = In(Between(tags_, sign), sign, rules)) return match;
  if (hidden_.empty()) return std::nullopt;
  return In(Between(all_, sign), sign, rules);
}

std::optional<AddressMatch> JointedText::AddressAt(std::size_t sign, std::size_t floor,
                                                   const DomainRules& rules) const {
  if (auto match = Whole(sign, rules)) return match;
  if (tags_.empty()) return std::nullopt;
  // The next address is not joined to this one when it stands whole between its tags.
  Piece piece{floor, text_.size()};
  const std::size_t next = FindByte(text_, '@', sign + 1);
  if (next != std::string_view::npos) {
    if (const auto match = Whole(next, rules)) piece.end = match->begin;
  }
  return In(piece, sign, rules);
}

std::optional<AddressMatch> JointedText::InWords(std::size_t sign, std::size_t floor, const DomainRules& rules) const {
  const auto in = [&](Piece piece) {
    piece.begin = std::max(piece.begin, floor);
    auto match = AddressInWords(text_.substr(piece.begin, piece.end - piece.begin), sign - piece.begin, rules);
    if (match) {
      match->begin += piece.begin;
      match->end += piece.begin;
    }
    return match;
  };
  if (auto match = in(Between(tags_, sign))) return match;
  if (tags_.empty()) return std::nullopt;
  return in({0, text_.size()});
}

bool JointedText::HidesWithin(std::size_t begin, std::size_t end) const {
  const auto behind = std::upper_bound(hidden_.begin(), hidden_.end(), begin);
  return behind != hidden_.end() && *behind < end;
}

}  // namespace quenlar
