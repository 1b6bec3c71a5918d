// Finds the places of a text that name an address which somebody does not want to be kept.
#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace quenlar {

// Whether an address may be kept.
using AddressTest = std::function<bool(std::string_view address)>;

// text[begin, end) names `address`.
struct UnwantedPlace {
  std::size_t begin = 0, sign = 0, end = 0;  // text[sign] is the "@", or the "%" of its code
  std::string address;                       // percent codes decoded
};

// The first place at or behind `from` that names an address for which `keeps` is false. Made for titles, links and
// reports: any character may be percent-encoded. Errs towards finding too much: clearing one title too many harms
// nobody, missing one address does. A longer address does not name a shorter one: "joanna@x.de" and
// "anna@x.de.com" do not name "anna@x.de", but "?mail=anna@x.de" and "anna@x.de.html" do.
[[nodiscard]] std::optional<UnwantedPlace> NextUnwanted(std::string_view text, const AddressTest& keeps,
                                                        std::size_t from = 0);

// A title, a link or a rule without the characters of such addresses.
[[nodiscard]] std::string WithoutUnwanted(std::string_view text, const AddressTest& keeps);

}  // namespace quenlar
