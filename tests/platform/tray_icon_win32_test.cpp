// The icon in the notification area: the record by which the system knows it, and what the task bar is told.
#include <gmock/gmock.h>

#include "platform/win32/event_loop.h"
#include "platform/win32/tray_icon.h"
#include "platform/win32/tray_record.h"
#include "support/fake_task_bar_win32.h"

namespace quenlar {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

HWND WindowOf(const Win32TrayIcon& icon) { return static_cast<HWND>(icon.window()); }

void StartTaskBarAnew(const Win32TrayIcon& icon) {
  SendMessageW(WindowOf(icon), RegisterWindowMessageW(L"TaskbarCreated"), 0, 0);
}

struct TrayIconTest : testing::Test {
  FakeTaskBar bar;
  Win32TrayIcon icon{nullptr};

  void DeliverMessagesUntilAsked(std::size_t times) const {
    Win32EventLoop loop;
    const ULONGLONG begun = GetTickCount64();
    while (bar.asked().size() < times && GetTickCount64() - begun < 60000) loop.Wait(std::chrono::milliseconds(100));
  }
};

TEST(TrayRecordTest, TheRecordIsTheOldestFormWithTheIconsHandleAsItsNumber) {
  const HWND window = GetDesktopWindow();
  const HICON icon = LoadIconW(nullptr, IDI_APPLICATION);
  ASSERT_NE(icon, nullptr);
  const NOTIFYICONDATAA record = win32::TrayRecord(window, icon);
  EXPECT_EQ(record.cbSize, sizeof(void*) == 4 ? 88u : 104u);
  EXPECT_EQ(record.hWnd, window);
  EXPECT_EQ(record.uID, static_cast<UINT>(reinterpret_cast<UINT_PTR>(icon)));
  EXPECT_EQ(record.uFlags, 7u);
  EXPECT_EQ(record.uCallbackMessage, 512u);
  EXPECT_EQ(record.hIcon, icon);
  EXPECT_STREQ(record.szTip, "");
}

TEST_F(TrayIconTest, IsAddedAndRemoved) {
  EXPECT_THAT(bar.asked(), IsEmpty());
  icon.AddTrayIcon();
  EXPECT_THAT(bar.asked(), ElementsAre(NIM_ADD));
  icon.RemoveTrayIcon();
  EXPECT_THAT(bar.asked(), ElementsAre(NIM_ADD, NIM_DELETE));
  icon.RemoveTrayIcon();
  EXPECT_EQ(bar.asked().size(), 2u);
}

TEST_F(TrayIconTest, ComesBackWhenTheTaskBarIsStartedAnew) {
  icon.AddTrayIcon();
  StartTaskBarAnew(icon);
  EXPECT_THAT(bar.asked(), ElementsAre(NIM_ADD, NIM_ADD));
}

TEST_F(TrayIconTest, StaysAwayWhenItHasBeenRemovedOrNeverAdded) {
  StartTaskBarAnew(icon);
  EXPECT_THAT(bar.asked(), IsEmpty());
  icon.AddTrayIcon();
  icon.RemoveTrayIcon();
  StartTaskBarAnew(icon);
  EXPECT_THAT(bar.asked(), ElementsAre(NIM_ADD, NIM_DELETE));
}

TEST_F(TrayIconTest, IsAddedLaterWhenTheTaskBarIsTooBusy) {
  bar.SetBusy(true);
  icon.AddTrayIcon();
  EXPECT_THAT(bar.asked(), ElementsAre(NIM_ADD));
  DeliverMessagesUntilAsked(3);
  std::vector<ULONG_PTR> first = bar.asked();
  first.resize(3);
  EXPECT_THAT(first, ElementsAre(NIM_ADD, NIM_MODIFY, NIM_ADD));
  EXPECT_FALSE(bar.has_icon());
  bar.SetBusy(false);
  DeliverMessagesUntilAsked(bar.asked().size() + 2);
  EXPECT_TRUE(bar.has_icon());
  EXPECT_FALSE(KillTimer(WindowOf(icon), 1)) << "asks no more";
}

TEST_F(TrayIconTest, IsNotAddedTwiceWhenTheTaskBarTookItTooLateForAnAnswer) {
  icon.AddTrayIcon();
  bar.SetBusy(true);
  icon.AddTrayIcon();
  bar.SetBusy(false);
  DeliverMessagesUntilAsked(3);
  EXPECT_THAT(bar.asked(), ElementsAre(NIM_ADD, NIM_ADD, NIM_MODIFY));
  EXPECT_FALSE(KillTimer(WindowOf(icon), 1)) << "asks no more";
}

TEST_F(TrayIconTest, IsNotAddedLaterWhenItHasBeenRemovedMeanwhile) {
  bar.SetBusy(true);
  icon.AddTrayIcon();
  icon.RemoveTrayIcon();
  EXPECT_THAT(bar.asked(), ElementsAre(NIM_ADD, NIM_DELETE));
  EXPECT_FALSE(KillTimer(WindowOf(icon), 1)) << "asks no more";
}

TEST_F(TrayIconTest, IsRemovedWithItsObject) {
  {
    Win32TrayIcon other(nullptr);
    other.AddTrayIcon();
  }
  EXPECT_THAT(bar.asked(), ElementsAre(NIM_ADD, NIM_DELETE));
}

TEST_F(TrayIconTest, TellsOfTheRightButtonAlone) {
  int heard = 0;
  icon.OnRightButtonDown([&] { ++heard; });
  for (const LPARAM mouse : {512, 513, 514, 515, 517, 518, 0}) SendMessageW(WindowOf(icon), 512, 1, mouse);
  SendMessageW(WindowOf(icon), WM_RBUTTONDOWN, 0, 0);
  EXPECT_EQ(heard, 0);
  SendMessageW(WindowOf(icon), 512, 1, 516);
  EXPECT_EQ(heard, 1);
}

}  // namespace
}  // namespace quenlar
