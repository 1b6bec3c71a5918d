// What the binder is told about the dialogs in the program's resources: which belongs to which form, which number to
// which control, and how places follow the window's size.
#pragma once

#include <span>

#include "ui/win32/windows_api.h"

namespace quenlar::ui {

// How a control follows its window: percent of what the window is wider and higher than in its template.
struct Anchor {
  int id;
  int move_x, grow_x, move_y, grow_y;
};

// A panel of a form that is a dialog of its own inside the tab strip.
struct Page {
  const char* panel;
  int dialog;
};

struct Dialog {
  const char* form;
  int dialog;
  // Opens over the window that is in use, stays in front of it and goes with it.
  bool owned;
  // Sizes of the window with its frame, in pixels at 96 dots per inch. Where `minimum` is set, the template shows the
  // places at that size, and the window opens at `first`. Otherwise the template's own size is that of the inside.
  SIZE minimum, first;
  std::span<const Anchor> anchors;
  std::span<const Page> pages;
};

// A control's name in its form and its number in the dialogs.
struct ControlNumber {
  const char* name;
  int id;
};

// The resources of one program. The tables must outlive all who have them.
struct Resources {
  HINSTANCE program;
  int icon;  // the number of the icon that all windows have
  std::span<const Dialog> dialogs;
  std::span<const ControlNumber> controls;
};

}  // namespace quenlar::ui
