// Reads a dialog out of the program's resources (dialog_items.h).
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "ui/win32/windows_api.h"

namespace quenlar::ui {

// The number of the control with this name, the same in every dialog and in every version of the program. Above the
// system's own numbers, as IDOK, and within the 16 bits that WM_COMMAND has for it.
[[nodiscard]] constexpr int ControlNumber(std::string_view name) {
  constexpr std::uint32_t kFirst = 1000, kEnd = 32768;
  std::uint32_t hash = 2166136261u;  // FNV-1a
  for (const char c : name) hash = (hash ^ static_cast<unsigned char>(c)) * 16777619u;
  return static_cast<int>(kFirst + hash % (kEnd - kFirst));
}

// The number of an entry of the form's own in the system menu of its window: below the system's (0xF000), and with the
// last four bits left to the system.
[[nodiscard]] constexpr WPARAM SystemMenuNumber(std::size_t index) { return 0x1000 + index * 0x10; }

struct DialogTemplate {
  SIZE size{};
  struct Item {
    int number;
    std::string name;  // of the control in its form; empty for a label that no form knows
    RECT place;
    // Percent of what the window is wider and higher than in its template.
    int move_x, grow_x, move_y, grow_y;
  };
  std::vector<Item> items;  // in tab order, which is also the order of the dialog's child windows
  // The template for the system (DLGTEMPLATEEX): each item with its number, and without the control's name.
  std::vector<std::byte> memory;
};

[[nodiscard]] bool HasDialog(HINSTANCE program, std::string_view name);

// The dialog must be there, and no two items of it may have the same number.
[[nodiscard]] DialogTemplate ReadDialogTemplate(HINSTANCE program, std::string_view name);

}  // namespace quenlar::ui
