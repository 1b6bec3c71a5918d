// What makes an address of the text around a sign.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include "platform/idna.h"

namespace quenlar {

constexpr std::size_t kLongestLocalPart = 64;  // RFC 5321, 4.5.3.1.1
constexpr std::size_t kLongestAddress = 254;   // RFC 5321, 4.5.3.1.3 without the angle brackets

// Returns where the local part before `end` begins, or npos. Walks back over the characters that the HTML Standard
// allows in one. It stops behind = ' ` { } | / ? & # (an apostrophe between two letters does not stop it), and skips
// dots at the beginning. npos where nothing is left, where more than kLongestLocalPart bytes are, and where the text
// before it is "@", a letter beyond ASCII of the same word, or the user name of a URL.
[[nodiscard]] std::size_t LocalPartBegin(std::string_view text, std::size_t end);

// The run of characters from `begin` on that a domain can be made of, at most as much as the longest domain takes.
struct DomainRun {
  std::size_t end = 0;
  bool beyond_ascii = false;
  bool goes_on = false;  // what follows belongs to the word, so the domain cannot end here
};
[[nodiscard]] DomainRun ReadDomainRun(std::string_view text, std::size_t begin);

struct Domain {
  std::string ascii;      // in lower case and A-labels
  std::size_t bytes = 0;  // of the run
};

// Judges domains.
class DomainRules {
 public:
  // `idna` must outlive the rules. `reserved_names`: names for examples and tests are domains like others.
  DomainRules(const Idna& idna, bool reserved_names) : idna_(idna), reserved_names_(reserved_names) {}

  // The domain that a run begins with: all of it without the dots and hyphens at its end, or, where text of a script
  // without blanks between words follows, the longest part before such text whose last label is a top-level domain.
  // Empty where no such domain is longer than `floor` bytes. `goes_on` as in DomainRun.
  [[nodiscard]] std::optional<Domain> DomainOf(std::string_view run, bool goes_on, std::size_t floor = 0) const;

 private:
  [[nodiscard]] std::optional<Domain> WholeRun(std::string_view run) const;
  [[nodiscard]] bool IsTopLevel(std::string_view label) const;
  [[nodiscard]] bool IsDomain(std::string_view ascii) const;

  const Idna& idna_;
  const bool reserved_names_;
};

// An address in a text: text[begin, end).
struct AddressMatch {
  std::size_t begin = 0, end = 0;
  std::string address;  // local part as written; domain in lower case and A-labels
};

// A cheap test of the "@" at `sign`. True does not promise an address; false rules one out.
[[nodiscard]] bool MayBeAddress(std::string_view text, std::size_t sign);

// Returns the address whose "@" is at `sign`; empty where none stands there.
[[nodiscard]] std::optional<AddressMatch> AddressAtSign(std::string_view text, std::size_t sign,
                                                        const DomainRules& rules);

// Puts the two parts together; nothing when that is too long.
[[nodiscard]] std::optional<std::string> JoinAddress(std::string_view local, std::string_view domain);

// Whether a host is reserved for examples and tests: example.com and its like, *.test, *.example, *.invalid,
// *.localhost (RFC 2606, RFC 6761). Takes lower case.
[[nodiscard]] bool IsReservedName(std::string_view host);

}  // namespace quenlar
