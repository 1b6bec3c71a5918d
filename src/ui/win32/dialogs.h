// Which dialog resource belongs to which form, which control number to which control name, and how places follow the
// window's size. The one place where names and numbers meet.
#pragma once

#include <optional>
#include <span>
#include <string_view>

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

// Null for a form without a window.
[[nodiscard]] const Dialog* DialogOf(std::string_view form);

// Empty for a name without a control in any dialog.
[[nodiscard]] std::optional<int> ControlId(std::string_view control);

}  // namespace quenlar::ui
