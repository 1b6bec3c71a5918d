// The order in which a list shows its rows: the order in which they came, or sorted by the cells of one column.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace quenlar::ui {

// Maps positions to rows. A position is a line of the list, with 0 at the top; a row is a number in the table behind
// the list. Unsorted, the two are the same and no memory is used. Sorted, a new row finds its place by binary search.
class RowOrder {
 public:
  using CellText = std::function<std::string(std::uint32_t row, int column)>;
  enum class Direction { kUp, kDown };
  struct Key {
    int column;
    Direction direction;
  };

  explicit RowOrder(CellText cell_text) : cell_text_(std::move(cell_text)) {}

  [[nodiscard]] std::optional<Key> key() const { return key_; }

  // Sorts upwards by `column`. When the rows are already sorted by that column, reverses the direction. Numbers are
  // compared as numbers, and texts without ASCII letter case. Rows with equal cells stay in the order in which they
  // came.
  void SortBy(int column);

  // Says that the table has `rows` rows now. Rows that were there must have kept their cells. To show another table,
  // call SetRows(0) first.
  void SetRows(std::uint32_t rows);

  [[nodiscard]] std::uint32_t rows() const { return rows_; }
  [[nodiscard]] std::uint32_t RowAt(std::uint32_t position) const { return key_ ? order_[position] : position; }
  // The position of a row. While sorted, it takes time in proportion to the number of rows.
  [[nodiscard]] std::uint32_t PositionOf(std::uint32_t row) const;

 private:
  struct Cell;
  [[nodiscard]] Cell ReadCell(std::uint32_t row) const;
  [[nodiscard]] bool Before(const Cell& a, const Cell& b) const;
  void SortAll();
  void Insert(std::uint32_t row);

  CellText cell_text_;
  std::optional<Key> key_;
  std::uint32_t rows_ = 0;
  std::vector<std::uint32_t> order_;  // empty while unsorted
};

}  // namespace quenlar::ui
