// The list of addresses: what a user does with it, at any length; and the layout of the main window.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "project/data_file.h"
#include "run/end_reasons.h"
#include "window/program.h"
#include "window/remote_memory.h"

namespace quenlar::window_test {
namespace {

using testing::ElementsAre;

struct ListTest : testing::Test {
  Program program;
  Window list;

  // A report of all information with one row for each address.
  void OpenWith(const std::vector<std::string>& addresses) {
    std::string report = HeaderLine() + "\r\n\r\n";
    int number = 0;
    for (const std::string& address : addresses) {
      ++number;
      report += std::to_string(number) + "     " + address + "     http://www.cars.example/" + std::to_string(number) +
                "     Page " + std::to_string(number) + "\r\n";
    }
    program.WriteFile("report/cars_example.rpt", report);
    program.Start();
    program.Main().Control("cmbURL").Type("www.cars.example");
    list = program.Main().Control("lstMail");
    ASSERT_TRUE(WaitUntil([&] { return list.Rows() == static_cast<int>(addresses.size()); })) << list.Rows();
  }
  [[nodiscard]] static Window Menu() { return Window(FindWindowW(L"#32768", nullptr)); }
  void ClickColumn(int column) const {
    const Window header(reinterpret_cast<HWND>(list.Send(LVM_GETHEADER)));
    int left = 0;
    for (int i = 0; i < column; ++i) left += list.ColumnWidth(i);
    header.MouseClick({left + 20, 8});
  }
};

TEST_F(ListTest, ColumnsAreTheFourOfATable) {
  OpenWith({"b@x.test", "a@x.test"});
  EXPECT_EQ(list.Cell(0, 0), "1");
  EXPECT_EQ(list.Cell(0, 1), "b@x.test");
  EXPECT_EQ(list.Cell(0, 2), "http://www.cars.example/1");
  EXPECT_THAT(list.Cell(0, 3), testing::HasSubstr("Page 1"));
}

TEST_F(ListTest, AClickOnAHeadingSortsAndASecondOneTurnsAround) {
  OpenWith({"b@x.test", "C@x.test", "a@x.test"});
  ClickColumn(1);
  ASSERT_TRUE(WaitUntil([&] { return list.Cell(0, 1) == "a@x.test"; }));
  EXPECT_THAT(list.Column(1), ElementsAre("a@x.test", "b@x.test", "C@x.test"));
  EXPECT_THAT(list.Column(0), ElementsAre("3", "1", "2"));
  ClickColumn(1);
  EXPECT_TRUE(WaitUntil([&] { return list.Cell(0, 1) == "C@x.test"; }));
}

TEST_F(ListTest, MarkedRowsStayMarkedWhenARunAddsRowsToASortedList) {
  Site site;
  for (const char* root : {"http://www.cars.example", "http://www.cars.example/"}) {
    site.SetPage(root, "<title>Cars</title> Write to a@x.test <p>");
  }
  StoreDefaultsWithoutUpgradeCheck();
  program.SetProxy(site);
  OpenWith({"c@x.test", "b@x.test"});
  ClickColumn(1);
  ASSERT_TRUE(WaitUntil([&] { return list.Cell(0, 1) == "b@x.test"; }));
  list.MarkRow(1);
  program.Main().Control("cmdExtract").Click();
  ASSERT_TRUE(program.Answer(kEndAllParsed));
  ASSERT_TRUE(WaitUntil([&] { return list.Rows() == 3; }));
  EXPECT_THAT(list.Column(1), ElementsAre("a@x.test", "b@x.test", "c@x.test"));
  EXPECT_TRUE(WaitUntil([&] { return list.MarkedRows() == std::vector<int>{2}; }));
}

TEST_F(ListTest, TheFocusMarkAndTheAnchorFollowTheirRowsWhenARunAddsRowsToASortedList) {
  Site site;
  for (const char* root : {"http://www.cars.example", "http://www.cars.example/"}) {
    site.SetPage(root, "<title>Cars</title> Write to a@x.test <p>");
  }
  StoreDefaultsWithoutUpgradeCheck();
  program.SetProxy(site);
  OpenWith({"d@x.test", "c@x.test", "b@x.test"});
  ClickColumn(1);
  ASSERT_TRUE(WaitUntil([&] { return list.Cell(0, 1) == "b@x.test"; }));
  list.MarkRow(2);
  list.MarkRow(0);
  list.Send(LVM_SETSELECTIONMARK, 0, 1);
  program.Main().Control("cmdExtract").Click();
  ASSERT_TRUE(program.Answer(kEndAllParsed));
  ASSERT_TRUE(WaitUntil([&] { return list.Rows() == 4; }));
  EXPECT_TRUE(WaitUntil([&] { return list.MarkedRows() == std::vector<int>{1, 3}; }));
  EXPECT_TRUE(WaitUntil([&] { return list.Send(LVM_GETNEXTITEM, static_cast<WPARAM>(-1), LVNI_FOCUSED) == 1; }));
  EXPECT_TRUE(WaitUntil([&] { return list.Send(LVM_GETSELECTIONMARK) == 2; }));
}

TEST_F(ListTest, TheContextMenuCopiesTheMarkedAddressesAsTheyAreShown) {
  OpenWith({"b@x.test", "c@x.test", "a@x.test"});
  ClickColumn(1);
  ASSERT_TRUE(WaitUntil([&] { return list.Cell(0, 1) == "a@x.test"; }));
  list.MarkRow(0);
  list.MarkRow(2);
  ASSERT_THAT(list.MarkedRows(), ElementsAre(0, 2));
  ClearClipboard();
  list.MouseRightClick(list.RowPlace(0));
  ASSERT_TRUE(WaitUntil([] { return Menu().Visible(); }));
  program.Main().PressLetter('a');
  ASSERT_TRUE(WaitUntil([] { return !Menu().Visible(); }));
  EXPECT_TRUE(WaitUntil([] { return ClipboardText() == "a@x.test\r\nc@x.test"; })) << ClipboardText();
}

TEST_F(ListTest, TheContextMenuOfTheKeyboardOpensAtTheFocusedRowOrAtTheEdgeNearestToIt) {
  constexpr int kRows = 200;
  std::vector<std::string> addresses;
  for (int i = 0; i < kRows; ++i) addresses.push_back("user" + std::to_string(i) + "@x.test");
  OpenWith(addresses);
  const auto opens_at = [&](POINT place) {
    ClientToScreen(list.handle(), &place);
    PostMessageW(list.handle(), WM_CONTEXTMENU, reinterpret_cast<WPARAM>(list.handle()), MAKELPARAM(-1, -1));
    ASSERT_TRUE(WaitUntil([] { return Menu().Visible(); }));
    const RECT menu = Menu().Place();
    program.Main().Press(VK_ESCAPE);
    ASSERT_TRUE(WaitUntil([] { return !Menu().Visible(); }));
    EXPECT_NEAR(menu.left, place.x, 4);
    EXPECT_NEAR(menu.top, place.y, 4);
  };
  const int row = kRows - 9;
  list.MarkRow(1);
  list.MarkRow(row);
  list.Send(LVM_ENSUREVISIBLE, kRows - 1, FALSE);
  const POINT middle = list.RowPlace(row), next = list.RowPlace(row + 1);
  opens_at({middle.x, (middle.y + next.y) / 2});
  list.MarkRow(0);
  list.Send(LVM_ENSUREVISIBLE, kRows - 1, FALSE);
  ASSERT_LT(list.RowPlace(0).y, 0) << "above what is seen";
  opens_at({middle.x, 0});
}

TEST_F(ListTest, CtrlAMarksEveryRowAndCtrlCCopiesTheirAddresses) {
  OpenWith({"b@x.test", "c@x.test"});
  ClearClipboard();
  const ControlKeyHeld held(list);
  list.Press('A');
  ASSERT_TRUE(WaitUntil([&] { return list.MarkedRows().size() == 2; }));
  list.Press('C');
  EXPECT_TRUE(WaitUntil([] { return ClipboardText() == "b@x.test\r\nc@x.test"; })) << ClipboardText();
}

TEST_F(ListTest, AClickOnEmptySpaceClearsTheSelection) {
  OpenWith({"b@x.test"});
  list.MarkRow(0);
  list.MouseClick({60, 200});
  EXPECT_TRUE(WaitUntil([&] { return list.MarkedRows().empty(); }));
}

TEST_F(ListTest, ThirtyThousandRowsAreShownAndSorted) {
  std::vector<std::string> addresses;
  for (int i = 0; i < 30000; ++i) addresses.push_back("user" + std::to_string(i * 7919 % 30011) + "@x.test");
  OpenWith(addresses);
  EXPECT_EQ(list.Cell(29999, 1), addresses.back());
  ClickColumn(1);
  EXPECT_TRUE(WaitUntil([&] { return list.Cell(0, 1) == "user0@x.test"; }));
  program.Main().Send(WM_NULL);
  EXPECT_EQ(list.Rows(), 30000);
}

TEST_F(ListTest, TheWindowKeepsItsSmallestSizeAndThePlacesFollow) {
  OpenWith({"b@x.test"});
  const Window main = program.Main();
  const int dpi = static_cast<int>(GetDpiForWindow(main.handle()));
  const auto scaled = [dpi](int pixels) { return MulDiv(pixels, dpi, 96); };
  const auto size = [](const Window& window) {
    const RECT place = window.Place();
    return SIZE{place.right - place.left, place.bottom - place.top};
  };
  const auto resize = [&](int width, int height) {
    SetWindowPos(main.handle(), nullptr, 0, 0, scaled(width), scaled(height),
                 SWP_NOZORDER | SWP_NOMOVE | SWP_NOACTIVATE);
  };
  resize(200, 100);
  EXPECT_TRUE(WaitUntil([&] { return size(main).cx == scaled(602) && size(main).cy == scaled(402); }));
  for (const int width : {602, 900}) {
    resize(width, 500);
    ASSERT_TRUE(WaitUntil([&] { return size(main).cx == scaled(width); }));
    EXPECT_TRUE(WaitUntil([&] { return size(main.Control("cmbURL")).cx == scaled(width) - scaled(161); }));
    EXPECT_EQ(size(list).cx, scaled(width) - scaled(113));
    EXPECT_EQ(size(list).cy, scaled(500) - scaled(97));
    EXPECT_LE(main.Control("cmdHide").Place().right, main.Place().right);
  }
}

TEST_F(ListTest, AColumnStaysWideEnoughToBeSeenAndGetsItsWidthBackWithTheWindow) {
  OpenWith({"b@x.test"});
  const Window main = program.Main();
  const auto resize = [&](int width) {
    SetWindowPos(main.handle(), nullptr, 0, 0, width, 500, SWP_NOZORDER | SWP_NOMOVE | SWP_NOACTIVATE);
    ASSERT_TRUE(WaitUntil([&] { return main.Place().right - main.Place().left == width; }));
    main.Send(WM_NULL);
  };
  const auto widths = [&] { return std::vector{list.ColumnWidth(1), list.ColumnWidth(2), list.ColumnWidth(3)}; };
  resize(700);
  const std::vector<int> narrow = widths();
  resize(1200);
  list.Send(LVM_SETCOLUMNWIDTH, 2, 50);
  list.Send(LVM_SETCOLUMNWIDTH, 3, 5);
  const std::vector<int> wide = widths();
  resize(700);
  EXPECT_THAT(widths(), ElementsAre(narrow[0], 40, 5));
  resize(602);
  resize(1200);
  EXPECT_EQ(widths(), wide);
}

TEST_F(ListTest, AnotherResolutionScalesTheWindowAndItsPlaces) {
  OpenWith({"b@x.test"});
  const Window main = program.Main();
  const auto width = [](const Window& window) { return window.Place().right - window.Place().left; };
  ASSERT_EQ(GetDpiForWindow(main.handle()), 96u);
  const int number_width = list.ColumnWidth(0);
  // What the system does when the window comes to a screen of 144 dots per inch.
  const RECT suggested{10, 10, 10 + 1050, 10 + 750};
  const RemoteMemory memory(main.handle(), sizeof suggested);
  memory.Write(&suggested, sizeof suggested);
  main.Send(WM_DPICHANGED, MAKEWPARAM(144, 144), reinterpret_cast<LPARAM>(memory.place()));
  EXPECT_EQ(width(main), 1050);
  EXPECT_EQ(width(list), 1050 - 113 * 3 / 2);
  EXPECT_EQ(width(main.Control("cmdHide")), MulDiv(79, 144, 96));
  EXPECT_EQ(list.ColumnWidth(0), MulDiv(number_width, 144, 96));
  // Nothing is made smaller than the smallest size, which is larger here too.
  SetWindowPos(main.handle(), nullptr, 0, 0, 602, 402, SWP_NOZORDER | SWP_NOMOVE | SWP_NOACTIVATE);
  EXPECT_TRUE(WaitUntil([&] { return width(main) == 602 * 3 / 2; })) << width(main);
}

}  // namespace
}  // namespace quenlar::window_test
