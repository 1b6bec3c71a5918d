// How a found address is printed.
#pragma once

#include <string>
#include <string_view>

#include "state/found_addresses.h"

namespace quenlar {

enum class AddressFormat {
  kLines,  // the address alone
  kCsv,    // "Address","URL","Title","TagOnly" (0 or 1)
  kJsonl,  // {"URL", "Address", "Title", "TagOnly"}
};

// One line with its line feed; line ends within a text become blanks in csv.
[[nodiscard]] std::string FormatAddress(const FoundAddress& record, AddressFormat format);

// A quoted field that no spreadsheet takes for a formula: an apostrophe goes before a leading = + - @ TAB or CR.
[[nodiscard]] std::string CsvField(std::string_view text);

}  // namespace quenlar
