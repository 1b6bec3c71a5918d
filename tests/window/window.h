// A window of another process, looked at and driven through messages alone, as a user's tools would do it.
#pragma once

#include <chrono>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "ui/win32/dialog_template.h"
#include "ui/win32/windows_api.h"

namespace quenlar::window_test {

// Asks again and again until the answer is yes; false when that takes too long, which no test relies on.
[[nodiscard]] bool WaitUntil(const std::function<bool()>& condition,
                             std::chrono::seconds limit = std::chrono::seconds(60));

class Window {
 public:
  Window() = default;
  explicit Window(HWND handle) : handle_(handle) {}

  [[nodiscard]] HWND handle() const { return handle_; }
  explicit operator bool() const { return handle_ && IsWindow(handle_); }
  friend bool operator==(const Window&, const Window&) = default;

  // The control with this number, or with this name in its form, in the window or in a page of it. Empty when there is
  // none.
  [[nodiscard]] Window Control(int number) const;
  [[nodiscard]] Window Control(std::string_view name) const { return Control(ui::ControlNumber(name)); }

  [[nodiscard]] std::string ClassName() const;
  [[nodiscard]] std::string Text() const;
  [[nodiscard]] bool Enabled() const { return IsWindowEnabled(handle_); }
  [[nodiscard]] bool Visible() const { return IsWindowVisible(handle_); }
  [[nodiscard]] RECT Place() const;  // on the screen
  // The number of the control that has the keyboard, in whichever window of the program; 0 when none has.
  [[nodiscard]] int FocusedControl() const;

  // As if typed over: the control tells its window about the change.
  void Type(const std::string& text) const;
  // The numbers of the controls that the Tab key walks over, from the first on.
  [[nodiscard]] std::vector<int> TabStops() const;
  // Presses a key, or a letter, without waiting for what it leads to.
  void Press(int virtual_key) const;
  void PressLetter(char letter) const;
  // Clicks a button, a check box or an option button. Does not wait for what it leads to: that may be a message box.
  void Click() const;
  void MouseClick(POINT inside) const;
  void MouseDoubleClick(POINT inside) const;
  void MouseRightClick(POINT inside) const;
  void Close() const { PostMessageW(handle_, WM_CLOSE, 0, 0); }

  [[nodiscard]] bool Checked() const { return Send(BM_GETCHECK) == BST_CHECKED; }

  // Combo boxes and list boxes.
  [[nodiscard]] std::vector<std::string> Items() const;
  void Pick(int index) const;
  void PickListItem(int index) const;

  // List views.
  [[nodiscard]] int Rows() const;
  [[nodiscard]] std::string Cell(int row, int column) const;
  [[nodiscard]] std::vector<std::string> Column(int column) const;
  [[nodiscard]] std::vector<int> MarkedRows() const;
  void MarkRow(int row) const;
  [[nodiscard]] POINT RowPlace(int row) const;
  [[nodiscard]] int ColumnWidth(int column) const;

  // The status bar; panels count from 1.
  [[nodiscard]] std::string Panel(int number) const;

  LRESULT Send(UINT message, WPARAM w = 0, LPARAM l = 0) const;

 private:
  [[nodiscard]] bool IsCombo() const { return ClassName() == "ComboBox"; }
  HWND handle_ = nullptr;
};

// Holds the Ctrl key down for the program of a window, for as long as this object lives.
class ControlKeyHeld {
 public:
  explicit ControlKeyHeld(const Window& window);
  ~ControlKeyHeld();
  ControlKeyHeld(const ControlKeyHeld&) = delete;
  ControlKeyHeld& operator=(const ControlKeyHeld&) = delete;

 private:
  void Set(BYTE state) const;
  DWORD thread_;
};

// What is on the clipboard; empty while there is no text or another program holds it.
[[nodiscard]] std::string ClipboardText();
void ClearClipboard();

[[nodiscard]] std::wstring Wide(const std::string& utf8);
[[nodiscard]] std::string Utf8(const std::wstring& wide);

}  // namespace quenlar::window_test
