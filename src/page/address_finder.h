// Finds the e-mail addresses of one page in the parts that the page reader hands over.
#pragma once

#include <cstddef>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "page/address_place.h"
#include "page/address_rules.h"
#include "page/page_address_list.h"
#include "page/text_run.h"
#include "platform/idna.h"

namespace quenlar {

// Takes the parts of a page in their order and keeps what it finds. Every part is read once, in time that grows with
// its size alone, whatever it holds; NULs and bytes that are not UTF-8 are allowed everywhere. Memory grows with what
// is found, with the joints of a run, and with the longest piece that has escapes in it.
//
// An address follows the pattern that the HTML Standard gives for e-mail fields, has a dot in its domain and ends in a
// top-level domain of the public suffix list.
class AddressFinder {
 public:
  struct Settings {
    bool reserved_names = false;    // names for examples and tests count, see MayHoldReservedNames
    bool decode_protected = false;  // protected addresses are listed, with the place kProtected
  };

  // `idna` turns domains beyond ASCII into A-labels; it must outlive the finder.
  AddressFinder(const Idna& idna, const Settings& settings);

  // What is handed over from now on begins at this byte of the page. Text may come later than what stands within it;
  // addresses are listed by their places all the same.
  void SetPlace(std::size_t place) { place_ = place; }
  void Text(const TextRun& run);
  // The target of a link, references decoded, with its "mailto:". Other targets are attributes.
  void Mailto(std::string_view target);
  // The value of any other attribute, references decoded. A "mailto:" target in it is decoded as such.
  void Attribute(std::string_view value);
  // The content of a script as it stands; also JSON. Strings in double quotes and lines are looked at one by one.
  void Script(std::string_view raw);
  // The content of a comment as it stands.
  void Comment(std::string_view raw);
  // The value of a data-cfemail attribute: hexadecimal digits, the first byte is the key of the others.
  void CfEmail(std::string_view hex);

  // Listed in the order of the page, each address (letter case ignored) once a place. The views stay valid as long as
  // the finder lives.
  [[nodiscard]] std::vector<PageAddress> Addresses() const { return list_.Listed(settings_.decode_protected); }
  // Whether anything has been found, be it plain or protected.
  [[nodiscard]] bool HasAny() const { return !list_.empty(); }
  // How many distinct addresses the page protects that it does not show plainly too.
  [[nodiscard]] std::size_t ProtectedCount() const { return list_.ProtectedCount(); }

 private:
  void Recipients(std::string_view target, AddressPlace place);
  void Scan(std::string_view text, std::span<const Joint> joints, AddressPlace place);

  const Settings settings_;
  const DomainRules rules_;
  PageAddressList list_;
  std::size_t place_ = 0;
  std::string decoded_;  // the piece at hand without its escapes
};

// Whether a target begins with "mailto:", letter case and blanks before it ignored.
[[nodiscard]] bool IsMailto(std::string_view target);

// Whether pages of this host (as a URL's serialisation spells it) may hold addresses of names that are reserved for
// examples and tests: such hosts themselves, and this machine.
[[nodiscard]] bool MayHoldReservedNames(std::string_view host);

}  // namespace quenlar
