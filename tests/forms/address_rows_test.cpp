#include "forms/address_rows.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace quenlar {
namespace {

using testing::ElementsAre;

struct AddressRowsTest : testing::Test {
  FoundAddresses found;
  AddressRowsTest() {
    found.Add({"http://a.test/1", "x@a.test", "First"});
    found.Add({"http://a.test/2", "y@a.test", "Second", true});
  }
};

TEST_F(AddressRowsTest, ColumnsAreTheFourOfTheTable) {
  std::vector<std::string> captions;
  int width = 0;
  for (const auto& column : AddressColumns()) {
    captions.push_back(column.caption);
    width += column.width;
  }
  EXPECT_THAT(captions, ElementsAre("#", "eMail address", "URL", "Title"));
  EXPECT_LE(width, 602 - 113 - 21) << "no scroll bar across in the smallest window";
}

TEST_F(AddressRowsTest, RowsAreNumberedFromOne) {
  std::vector<std::string> cells;
  for (int column = 0; column < 4; ++column) cells.push_back(AddressCell(found, 1, column));
  EXPECT_THAT(cells, ElementsAre("2", "y@a.test", "http://a.test/2", "Second"));
}

TEST_F(AddressRowsTest, WhatTheTableDoesNotHaveIsEmpty) {
  EXPECT_EQ(AddressCell(found, 2, 1), "");
  EXPECT_EQ(AddressCell(found, 0, 4), "");
  EXPECT_EQ(AddressCell(found, 0, -1), "");
  EXPECT_EQ(AddressCellColor(found, 2, 1), std::nullopt);
}

TEST_F(AddressRowsTest, OnlyTheAddressOfATagOnlyRowIsRed) {
  EXPECT_EQ(AddressCellColor(found, 1, 1), 0x0000FFu);
  for (const int column : {0, 2, 3}) EXPECT_EQ(AddressCellColor(found, 1, column), std::nullopt) << column;
  EXPECT_EQ(AddressCellColor(found, 0, 1), std::nullopt);
}

TEST_F(AddressRowsTest, CopiesAddressesInTheOrderInWhichTheyAreShown) {
  EXPECT_EQ(CopyOfAddresses(found, {0}), "x@a.test");
  EXPECT_EQ(CopyOfAddresses(found, {1, 0}), "y@a.test\r\nx@a.test");
}

TEST_F(AddressRowsTest, CopiesRowsWithTabsBetweenTheCells) {
  EXPECT_EQ(CopyOfRows(found, {1, 0}), "2\ty@a.test\thttp://a.test/2\tSecond\r\n1\tx@a.test\thttp://a.test/1\tFirst");
}

TEST_F(AddressRowsTest, ACopiedCellStaysOneCell) {
  found.Add({"http://a.test/\t3", "z@a.test", "two\r\nlines"});
  EXPECT_EQ(CopyOfRows(found, {2}), "3\tz@a.test\thttp://a.test/ 3\ttwo  lines");
}

TEST_F(AddressRowsTest, CopiesAreNeverCut) {
  const std::string title(5000, 't');
  found.Add({"http://a.test/3", "z@a.test", title});
  EXPECT_EQ(CopyOfRows(found, {2}), "3\tz@a.test\thttp://a.test/3\t" + title);
  std::vector<std::uint32_t> rows;
  for (std::uint32_t i = 0; i < 100000; ++i) {
    found.Add({"http://a.test/", "u" + std::to_string(i) + "@a.test", ""});
    rows.push_back(3 + i);
  }
  const std::string copy = CopyOfAddresses(found, rows);
  EXPECT_EQ(std::count(copy.begin(), copy.end(), '\n'), 99999);
  EXPECT_TRUE(copy.ends_with("\r\nu99999@a.test"));
}

}  // namespace
}  // namespace quenlar
