// The found-address table as the rows and columns of the main window's list.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "state/found_addresses.h"
#include "ui/controls.h"

namespace quenlar {

// The four columns: "#", "eMail address", "URL", "Title". The widths fit the smallest window.
[[nodiscard]] std::vector<ui::ListView::Column> AddressColumns();

// Returns the text of a cell. Rows and columns count from 0. Empty when the table does not have the row or column.
[[nodiscard]] std::string AddressCell(const FoundAddresses& found, std::uint32_t row, int column);

// Returns red for the address of a record whose TagOnly is set, and nothing for every other cell.
[[nodiscard]] std::optional<ui::Color> AddressCellColor(const FoundAddresses& found, std::uint32_t row, int column);

// Return what the clipboard gets of these rows: the addresses, or whole rows with TABs between their cells. Each row is
// one line, with CR LF between the lines and none behind the last. Cells are never cut. A character that would break a
// line or a cell apart becomes a blank.
[[nodiscard]] std::string CopyOfAddresses(const FoundAddresses& found, const std::vector<std::uint32_t>& rows);
[[nodiscard]] std::string CopyOfRows(const FoundAddresses& found, const std::vector<std::uint32_t>& rows);

}  // namespace quenlar
