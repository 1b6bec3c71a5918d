// The order in which a list shows its rows: as they came, or sorted by the cells of one column.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace quenlar::ui {

// Maps positions (0 is the top line of the list) to rows of the table behind it. Unsorted it takes no memory.
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

  // Sorts by a column; by the one it is sorted by already, it turns the direction around. Numbers are compared as
  // numbers, texts without ASCII case; equal cells stay in the order in which their rows came.
  void SortBy(int column);

  // The table has `rows` rows now; those that were there keep their cells. To show another table, SetRows(0) first.
  void SetRows(std::uint32_t rows);

  [[nodiscard]] std::uint32_t rows() const { return rows_; }
  [[nodiscard]] std::uint32_t RowAt(std::uint32_t position) const { return key_ ? order_[position] : position; }
  // Linear in the number of rows while sorted.
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
