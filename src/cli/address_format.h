// The formats in which found addresses are printed.
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

// "lines", "csv" or "jsonl"; any other word counts as "lines".
[[nodiscard]] AddressFormat FormatOf(std::string_view word);

// Returns one line with its line feed. In csv, line ends inside a text become blanks.
[[nodiscard]] std::string FormatAddress(const FoundAddress& record, AddressFormat format);

// Returns a text as a quoted csv field that no spreadsheet takes for a formula: a text that begins with = + - @ TAB or
// CR gets an apostrophe in front.
[[nodiscard]] std::string CsvField(std::string_view text);

}  // namespace quenlar
