// Reads the places of a dialog's controls from its resource. They are pixels at 96 dots per inch.
#pragma once

#include <vector>

#include "ui/win32/windows_api.h"

namespace quenlar::ui {

struct DialogTemplate {
  SIZE size{};
  struct Item {
    int id;
    RECT place;
  };
  std::vector<Item> items;  // in tab order, which is also the order of the dialog's child windows
};

// The dialog must exist in the program's resources.
[[nodiscard]] DialogTemplate ReadDialogTemplate(HINSTANCE program, int dialog_id);

}  // namespace quenlar::ui
