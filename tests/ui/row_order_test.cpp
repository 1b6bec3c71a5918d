#include "ui/row_order.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace quenlar::ui {
namespace {

using testing::ElementsAre;

struct Table {
  std::vector<std::vector<std::string>> rows;
  mutable int cells_read = 0;
  RowOrder order{[this](std::uint32_t row, int column) {
    ++cells_read;
    return rows[row][column];
  }};

  void Add(std::vector<std::string> row) {
    rows.push_back(std::move(row));
    order.SetRows(static_cast<std::uint32_t>(rows.size()));
  }
  [[nodiscard]] std::vector<std::string> Shown(int column) const {
    std::vector<std::string> shown;
    for (std::uint32_t i = 0; i < order.rows(); ++i) shown.push_back(rows[order.RowAt(i)][column]);
    return shown;
  }
};

TEST(RowOrder, UnsortedRowsStandAsTheyCame) {
  Table table;
  table.Add({"b"});
  table.Add({"a"});
  EXPECT_THAT(table.Shown(0), ElementsAre("b", "a"));
  EXPECT_EQ(table.order.PositionOf(1), 1u);
  EXPECT_EQ(table.cells_read, 0);
}

TEST(RowOrder, SortsTextsWithoutCaseAndTurnsAroundTheSecondTime) {
  Table table;
  for (const char* text : {"beta", "Alpha", "gamma"}) table.Add({text});
  table.order.SortBy(0);
  EXPECT_THAT(table.Shown(0), ElementsAre("Alpha", "beta", "gamma"));
  EXPECT_EQ(table.order.PositionOf(0), 1u);
  table.order.SortBy(0);
  EXPECT_THAT(table.Shown(0), ElementsAre("gamma", "beta", "Alpha"));
  table.order.SortBy(0);
  EXPECT_THAT(table.Shown(0), ElementsAre("Alpha", "beta", "gamma"));
}

TEST(RowOrder, AnotherColumnStartsUpwards) {
  Table table;
  table.Add({"1", "b"});
  table.Add({"2", "a"});
  table.order.SortBy(0);
  table.order.SortBy(0);
  table.order.SortBy(1);
  EXPECT_THAT(table.Shown(1), ElementsAre("a", "b"));
}

TEST(RowOrder, SortsNumbersByValue) {
  Table table;
  for (const char* text : {"10", "9", "100", "1"}) table.Add({text});
  table.order.SortBy(0);
  EXPECT_THAT(table.Shown(0), ElementsAre("1", "9", "10", "100"));
}

TEST(RowOrder, EqualCellsStayInTheOrderInWhichTheyCame) {
  Table table;
  table.Add({"x", "first"});
  table.Add({"X", "second"});
  table.Add({"a", "third"});
  table.order.SortBy(0);
  EXPECT_THAT(table.Shown(1), ElementsAre("third", "first", "second"));
  table.order.SortBy(0);
  EXPECT_THAT(table.Shown(1), ElementsAre("first", "second", "third"));
}

TEST(RowOrder, RowsThatComeWhileSortedFindTheirPlace) {
  Table table;
  table.order.SortBy(0);
  for (int i = 0; i < 1000; ++i) table.Add({std::to_string(i * 7919 % 1000)});
  for (std::uint32_t i = 0; i < 1000; ++i) ASSERT_EQ(table.rows[table.order.RowAt(i)][0], std::to_string(i));
  table.cells_read = 0;
  table.Add({"500"});
  EXPECT_LT(table.cells_read, 20);
  EXPECT_EQ(table.order.PositionOf(1000), 501u);
}

TEST(RowOrder, AnotherTableIsSortedAfresh) {
  Table table;
  for (const char* text : {"b", "a", "c"}) table.Add({text});
  table.order.SortBy(0);
  table.order.SetRows(0);
  table.rows = {{"z"}, {"y"}};
  table.order.SetRows(2);
  EXPECT_THAT(table.Shown(0), ElementsAre("y", "z"));
}

}  // namespace
}  // namespace quenlar::ui
