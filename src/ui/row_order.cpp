#include "ui/row_order.h"

#include <algorithm>

#include "base/ascii.h"

namespace quenlar::ui {

struct RowOrder::Cell {
  std::string text;  // lower case
  bool is_number;    // digits only
  std::uint32_t row;
};

RowOrder::Cell RowOrder::ReadCell(std::uint32_t row) const {
  Cell cell{Lower(cell_text_(row, key_->column)), false, row};
  cell.is_number = !cell.text.empty() && std::all_of(cell.text.begin(), cell.text.end(), IsDigit);
  return cell;
}

bool RowOrder::Before(const Cell& a, const Cell& b) const {
  int compared = 0;
  if (a.is_number && b.is_number && a.text.size() != b.text.size()) {
    compared = a.text.size() < b.text.size() ? -1 : 1;  // cells have no leading zeros
  } else {
    compared = a.text.compare(b.text);
  }
  if (compared == 0) return a.row < b.row;
  return key_->direction == Direction::kUp ? compared < 0 : compared > 0;
}

void RowOrder::SortBy(int column) {
  const bool turn = key_ && key_->column == column && key_->direction == Direction::kUp;
  key_ = Key{column, turn ? Direction::kDown : Direction::kUp};
  SortAll();
}

void RowOrder::SortAll() {
  std::vector<Cell> cells;
  cells.reserve(rows_);
  for (std::uint32_t row = 0; row < rows_; ++row) cells.push_back(ReadCell(row));
  std::sort(cells.begin(), cells.end(), [this](const Cell& a, const Cell& b) { return Before(a, b); });
  order_.resize(rows_);
  std::transform(cells.begin(), cells.end(), order_.begin(), [](const Cell& cell) { return cell.row; });
}

// Puts a new row into its place by binary search, which reads only a few cells of the other rows.
void RowOrder::Insert(std::uint32_t row) {
  const Cell cell = ReadCell(row);
  const auto place =
      std::upper_bound(order_.begin(), order_.end(), cell,
                       [this](const Cell& added, std::uint32_t other) { return Before(added, ReadCell(other)); });
  order_.insert(place, row);
}

void RowOrder::SetRows(std::uint32_t rows) {
  const std::uint32_t before = rows_;
  rows_ = rows;
  if (!key_) return;
  // Each inserted row reads a number of cells that grows with the logarithm of the rows. So when many rows have come,
  // sorting all of them anew is cheaper.
  if (rows < before || rows - before > 16 + before / 16) {
    SortAll();
  } else {
    for (std::uint32_t row = before; row < rows; ++row) Insert(row);
  }
}

std::uint32_t RowOrder::PositionOf(std::uint32_t row) const {
  if (!key_) return row;
  return static_cast<std::uint32_t>(std::find(order_.begin(), order_.end(), row) - order_.begin());
}

}  // namespace quenlar::ui
