// The rules of addresses done one by one on lists of characters, slowly: what the finder is checked against.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "page/address_place.h"
#include "page/text_run.h"

namespace quenlar {

struct ReferenceAddress {
  std::string address, written;
  AddressPlace place;
};

// Knows the kinds of few characters beyond ASCII: those that the random texts are made of.
class ReferenceFinder {
 public:
  void Text(const TextRun& run);
  void Mailto(std::string_view target) { Target(std::string(target), AddressPlace::kMailto); }
  void Attribute(std::string_view value);
  void Script(std::string_view raw);
  void Comment(std::string_view raw) { Find(raw, {}, AddressPlace::kComment); }
  void CfEmail(std::string_view hex);

  // Protected ones too.
  [[nodiscard]] std::vector<ReferenceAddress> Addresses() const;

 private:
  void Target(std::string target, AddressPlace place);
  void Find(std::string_view text, const std::vector<Joint>& joints, AddressPlace place);

  std::vector<ReferenceAddress> seen_;  // every sighting
};

}  // namespace quenlar
