#include "forms/address_rows.h"

namespace quenlar {
namespace {

constexpr int kNumberColumn = 0, kAddressColumn = 1, kUrlColumn = 2, kTitleColumn = 3;
constexpr ui::Color kRed = 0x0000FF;

template <typename AddLine>
std::string JoinLines(const std::vector<std::uint32_t>& rows, const AddLine& add_line) {
  std::string text;
  for (const std::uint32_t row : rows) {
    if (!text.empty()) text += "\r\n";
    add_line(text, row);
  }
  return text;
}

std::string OnOneLine(std::string cell) {
  for (char& c : cell) {
    if (c == '\t' || c == '\r' || c == '\n') c = ' ';
  }
  return cell;
}

}  // namespace

std::vector<ui::ListView::Column> AddressColumns() {
  return {{"#", 44, true}, {"eMail address", 160}, {"URL", 150}, {"Title", 110}};
}

std::string AddressCell(const FoundAddresses& found, std::uint32_t row, int column) {
  if (row >= found.Count()) return "";
  const FoundAddress record = found.At(row);
  switch (column) {
    case kNumberColumn:
      return std::to_string(row + 1);
    case kAddressColumn:
      return std::string(record.Address);
    case kUrlColumn:
      return std::string(record.URL);
    case kTitleColumn:
      return std::string(record.Title);
    default:
      return "";
  }
}

std::optional<ui::Color> AddressCellColor(const FoundAddresses& found, std::uint32_t row, int column) {
  if (column != kAddressColumn || row >= found.Count() || !found.At(row).TagOnly) return std::nullopt;
  return kRed;
}

std::string CopyOfAddresses(const FoundAddresses& found, const std::vector<std::uint32_t>& rows) {
  return JoinLines(
      rows, [&](std::string& text, std::uint32_t row) { text += OnOneLine(AddressCell(found, row, kAddressColumn)); });
}

std::string CopyOfRows(const FoundAddresses& found, const std::vector<std::uint32_t>& rows) {
  return JoinLines(rows, [&](std::string& text, std::uint32_t row) {
    for (const int column : {kNumberColumn, kAddressColumn, kUrlColumn, kTitleColumn}) {
      if (column != kNumberColumn) text += '\t';
      text += OnOneLine(AddressCell(found, row, column));
    }
  });
}

}  // namespace quenlar
