// A run of text whose words tags may part or join.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string_view>
#include <vector>

#include "page/address_rules.h"
#include "page/text_run.h"

namespace quenlar {

// A tag may stand between two words or within one: "<b>anna</b>@example.org". An address that stands whole between two
// tags ends there. Only where there is none is the text around tags joined. An element that is not shown is taken out
// first; its place parts the text only where no address is found without it.
class JointedText {
 public:
  // Views that must outlive the object.
  JointedText(std::string_view text, std::span<const Joint> joints);

  // The address around the "@" at `sign`. It begins at `floor` or later, where the address before it ended.
  [[nodiscard]] std::optional<AddressMatch> AddressAt(std::size_t sign, std::size_t floor,
                                                      const DomainRules& rules) const;
  // The address in words around `sign`.
  [[nodiscard]] std::optional<AddressMatch> InWords(std::size_t sign, std::size_t floor,
                                                    const DomainRules& rules) const;
  // Whether an element that is not shown stood inside text[begin, end).
  [[nodiscard]] bool HidesWithin(std::size_t begin, std::size_t end) const;

 private:
  struct Piece {
    std::size_t begin, end;
  };
  [[nodiscard]] Piece Between(const std::vector<std::uint32_t>& joints, std::size_t sign) const;
  [[nodiscard]] std::optional<AddressMatch> In(Piece piece, std::size_t sign, const DomainRules& rules) const;
  [[nodiscard]] std::optional<AddressMatch> Whole(std::size_t sign, const DomainRules& rules) const;

  std::string_view text_;
  std::vector<std::uint32_t> tags_, hidden_, all_;
};

}  // namespace quenlar
