// The found-address table as the rows and columns of the main window's list.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "state/found_addresses.h"
#include "ui/controls.h"

namespace quenlar {

// "#", "eMail address", "URL", "Title". The widths are those in the smallest window.
[[nodiscard]] std::vector<ui::ListView::Column> AddressColumns();

// Empty for a row or column that the table does not have.
[[nodiscard]] std::string AddressCell(const FoundAddresses& found, std::uint32_t row, int column);

// Red for an address that stood inside a tag, as its page's only one.
[[nodiscard]] std::optional<ui::Color> AddressCellColor(const FoundAddresses& found, std::uint32_t row, int column);

// For the clipboard: one line a row, CR LF between lines and none behind the last, whole cells whatever their length.
// A row's cells stand between TABs; what would break a line or a cell apart becomes a blank.
[[nodiscard]] std::string CopyOfAddresses(const FoundAddresses& found, const std::vector<std::uint32_t>& rows);
[[nodiscard]] std::string CopyOfRows(const FoundAddresses& found, const std::vector<std::uint32_t>& rows);

}  // namespace quenlar
