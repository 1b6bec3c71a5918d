// Addresses that are never to be listed: the suppression list.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/text_arena.h"
#include "base/text_hash.h"
#include "platform/idna.h"
#include "platform/index_table.h"
#include "state/address_filter.h"

namespace quenlar {

// An entry of the list in the one form that is compared: "anna@example.org", "@example.org" or "sha256:" and 64
// hexadecimal digits, all in lower case, domains in A-labels. Empty where `text` is none of these.
[[nodiscard]] std::optional<std::string> SuppressionEntry(std::string_view text, const Idna& idna);

// The entry that holds for an address without naming it: "sha256:" and the digest of the address in lower case.
[[nodiscard]] std::string DigestEntry(std::string_view address);

// An address is suppressed by an entry that is itself, its domain (and not a domain above it), or its digest. Letter
// case makes no difference. A look-up takes the same time whatever the size of the list.
class SuppressionList final : public AddressFilter {
 public:
  // `entry` comes from SuppressionEntry. False: the list holds it already.
  bool Add(std::string_view entry);

  [[nodiscard]] bool Keeps(std::string_view address) override { return !EntryFor(address); }
  // The entry that holds for the address.
  [[nodiscard]] std::optional<std::string> EntryFor(std::string_view address) const;
  [[nodiscard]] bool Has(std::string_view entry) const;
  // Names no address. Another one where the entries or their order are others; empty where the list is empty.
  [[nodiscard]] std::string Digest() const;

  [[nodiscard]] bool empty() const { return entries_.empty(); }
  // In the order in which they were added. The views stay valid as long as the list lives.
  [[nodiscard]] const std::vector<std::string_view>& entries() const { return entries_; }

 private:
  TextArena texts_;
  std::vector<std::string_view> entries_;
  TextHash hash_;
  IndexTable index_;
  bool has_digests_ = false;
};

}  // namespace quenlar
