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

// Where the local part begins that ends before `end`; npos when there is none. It is written in the characters of the
// HTML Standard's pattern. What stands up to the last = ' ` { } | / ? & # is not part of it, except an apostrophe
// between two letters, and neither are dots before it. There is none behind "@", behind a letter beyond ASCII that the
// word goes on with, and where a URL's user name stands.
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
  // Longer than `floor` bytes.
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

// Whether an address can stand around the "@" at `sign`. Told at a glance.
[[nodiscard]] bool MayBeAddress(std::string_view text, std::size_t sign);

// The address whose "@" is at `sign`.
[[nodiscard]] std::optional<AddressMatch> AddressAtSign(std::string_view text, std::size_t sign,
                                                        const DomainRules& rules);

// Puts the two parts together; nothing when that is too long.
[[nodiscard]] std::optional<std::string> JoinAddress(std::string_view local, std::string_view domain);

// Whether a host is reserved for examples and tests: example.com and its like, *.test, *.example, *.invalid,
// *.localhost (RFC 2606, RFC 6761). Takes lower case.
[[nodiscard]] bool IsReservedName(std::string_view host);

}  // namespace quenlar
