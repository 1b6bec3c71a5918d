// The control models: what a program's change and what a user's doing leads to.
#include "ui/controls.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace quenlar::ui {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

struct Recorded {
  explicit Recorded(Control& control) {
    control.changed = [this](Aspect aspect) { aspects.push_back(aspect); };
  }
  std::vector<Aspect> aspects;
};

TEST(Controls, AChangeIsToldToTheBinderOnceAndOnlyWhenItIsOne) {
  Button button("cmdX", "X");
  Recorded recorded(button);
  button.SetText("X");
  button.SetEnabled(true);
  EXPECT_THAT(recorded.aspects, IsEmpty());
  button.SetText("Y");
  button.SetEnabled(false);
  button.SetVisible(false);
  EXPECT_THAT(recorded.aspects, ElementsAre(Aspect::kText, Aspect::kEnabled, Aspect::kVisible));
}

TEST(Controls, AModelWithoutABinderJustHoldsItsState) {
  TextBox box("txtX");
  box.SetText("a");
  box.MoveCaretToEnd();
  box.SetFocus();
  EXPECT_EQ(box.text(), "a");
}

TEST(Controls, ATextBoxChangesForProgramAndUserButOnlyForAnotherText) {
  TextBox box("txtX", "a");
  int changes = 0;
  box.Change = [&] { ++changes; };
  box.SetText("a");
  box.UserText("a");
  EXPECT_EQ(changes, 0);
  box.SetText("b");
  box.UserText("c");
  EXPECT_EQ(changes, 2);
}

TEST(Controls, WhatTheUserTypesIsNotToldBackToTheBinder) {
  TextBox box("txtX");
  Recorded recorded(box);
  box.UserText("typed");
  EXPECT_THAT(recorded.aspects, IsEmpty());
}

TEST(Controls, ACheckBoxClicksWhenTheProgramChangesItToo) {
  CheckBox box("chkX");
  int clicks = 0;
  box.Click = [&] { ++clicks; };
  box.SetChecked(false);
  EXPECT_EQ(clicks, 0);
  box.SetChecked(true);
  box.UserClick();
  EXPECT_EQ(clicks, 2);
  EXPECT_FALSE(box.checked());
}

TEST(Controls, SelectingAnOptionClearsTheOthersOfItsGroup) {
  OptionButton a("optA"), b("optB");
  a.group = {&b};
  b.group = {&a};
  int clicks = 0;
  a.Click = b.Click = [&] { ++clicks; };
  a.Select();
  b.Select();
  b.Select();
  EXPECT_FALSE(a.selected());
  EXPECT_TRUE(b.selected());
  EXPECT_EQ(clicks, 2);
}

TEST(Controls, PickingFromAComboBoxClicksWithoutAChange) {
  ComboBox combo("cmbX", "old");
  combo.SetItems({"a", "b"});
  std::vector<std::string> events;
  combo.Change = [&] { events.push_back("change"); };
  combo.Click = [&] { events.push_back("click " + combo.text()); };
  combo.UserPick(1);
  combo.UserPick(2);
  EXPECT_THAT(events, ElementsAre("click b"));
  combo.SetText("typed");
  combo.UserText("more");
  EXPECT_THAT(events, ElementsAre("click b", "change", "change"));
}

TEST(Controls, ASortedListBoxKeepsItsItemsInOrderWithoutCase) {
  ListBox list("lstX");
  list.sorted = true;
  list.SetItems({"b", "C", "a", "B"});
  EXPECT_THAT(list.items(), ElementsAre("a", "b", "B", "C"));
}

TEST(Controls, NewItemsOfAListBoxAreNotSelected) {
  ListBox list("lstX");
  int clicks = 0;
  list.Click = [&] { ++clicks; };
  list.SetItems({"a", "b"});
  list.UserSelect({true, true});
  EXPECT_EQ(list.SelectedCount(), 2u);
  EXPECT_EQ(clicks, 1);
  list.SetItems({"a", "b"});
  EXPECT_EQ(list.SelectedCount(), 0u);
  EXPECT_FALSE(list.selected(7));
}

TEST(Controls, AListViewForgetsASelectionThatHasGone) {
  ListView list("lstX");
  list.SetRows(3);
  list.UserSelect(2);
  list.SetRows(5);
  EXPECT_EQ(list.selected(), 2u);
  list.SetRows(2);
  EXPECT_EQ(list.selected(), std::nullopt);
}

TEST(Controls, ATimerHasItsDesignState) {
  EXPECT_TRUE(Timer("tmrA", std::chrono::milliseconds(5), true).enabled());
  EXPECT_FALSE(Timer("tmrB", std::chrono::milliseconds(5), false).enabled());
}

struct TestForm final : Form {
  TestForm() : Form("frmTest", "Test") {
    window.create = [this] { calls.push_back("create"); };
    window.show = [this] { calls.push_back("show"); };
    window.hide = [this] { calls.push_back("hide"); };
    window.destroy = [this] { calls.push_back("destroy"); };
    window.run_modal = [this] { calls.push_back("modal"); };
  }
  std::vector<Control*> Controls() override { return {}; }
  void Load() override { calls.push_back("Load"); }
  void Unload() override { calls.push_back("Unload"); }
  std::vector<std::string> calls;
};

TEST(Forms, LoadOnceBeforeTheyAreShownAndUnloadAsTheyGo) {
  TestForm form;
  form.Show();
  form.Hide();
  EXPECT_TRUE(form.loaded());
  EXPECT_FALSE(form.shown());
  form.Show();
  form.Close();
  form.Close();
  EXPECT_THAT(form.calls, ElementsAre("create", "Load", "show", "hide", "show", "Unload", "destroy"));
  EXPECT_FALSE(form.loaded());
}

TEST(Forms, CanBeLoadedWithoutBeingShown) {
  TestForm form;
  form.EnsureLoaded();
  form.EnsureLoaded();
  EXPECT_THAT(form.calls, ElementsAre("create", "Load"));
  EXPECT_FALSE(form.shown());
}

TEST(Forms, AreModalAfterTheyAreShown) {
  TestForm form;
  form.ShowModal();
  EXPECT_THAT(form.calls, ElementsAre("create", "Load", "show", "modal"));
}

TEST(Forms, TellTheirWindowOfANewCaptionOnly) {
  TestForm form;
  int told = 0;
  form.window.caption_changed = [&] { ++told; };
  form.SetCaption("Test");
  form.SetCaption("Other");
  EXPECT_EQ(told, 1);
}

TEST(PopupMenus, WithoutAToolkitDoNothing) {
  PopupMenu menu;
  menu.PopUp();
  EXPECT_THAT(menu.items, IsEmpty());
}

}  // namespace
}  // namespace quenlar::ui
