// Models of a form's controls that know no toolkit. A form has them as members, and all of its logic works on them. A
// binder ties each model to a real control and keeps the two in step. A test uses the models alone. A model draws
// nothing.
//
// A form sets the events of its controls once, and then reads and changes their properties:
//
//   class frmGreeting : public ui::Form {
//    public:
//     frmGreeting() : Form("frmGreeting", "Greeting") {
//       cmdGreet.Click = [this] { lblGreeting.SetText("Hello, " + txtName.text()); };
//       txtName.Change = [this] { cmdGreet.SetEnabled(!txtName.text().empty()); };
//     }
//     std::vector<ui::Control*> Controls() override { return {&txtName, &cmdGreet, &lblGreeting}; }
//     ui::TextBox txtName{"txtName"};
//     ui::Button cmdGreet{"cmdGreet", "&Greet"};
//     ui::Label lblGreeting{"lblGreeting"};
//   };
//
// A test plays the user: `form.txtName.UserText("Ann"); form.cmdGreet.Click();`.
//
// Changes go in two directions. When the form changes a property (Set...), the model calls `changed`, and the binder
// shows the new value. When the user does something, the binder reports it to the model (User...), and the model calls
// the event that the form has set. A text that the user has typed does not call `changed`, because the control shows it
// already. An event that is not set is not called.
//
// Everything runs on the thread of the event loop. An event handler may pump. All texts are UTF-8.
#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace quenlar::ui {

// Colours in the blue-green-red order of the platform: 0xBBGGRR.
using Color = std::uint32_t;

class ControlVisitor;

// Tells the binder what of a control has changed. kFocus and kCaret are requests: to move the keyboard focus to the
// control, and the caret to the end of its text.
enum class Aspect { kEnabled, kVisible, kText, kItems, kSelection, kChecked, kColor, kFocus, kCaret };

// What every control has. The form owns its controls and lets them live as long as itself.
class Control {
 public:
  // `name` is the name of the control in its form. `text` is its first caption or contents.
  explicit Control(std::string name, std::string text = {}) : name_(std::move(name)), text_(std::move(text)) {}
  virtual ~Control() = default;
  Control(const Control&) = delete;
  Control& operator=(const Control&) = delete;

  // Calls the function of the visitor that is for this kind of control.
  virtual void Accept(ControlVisitor& visitor) = 0;

  // The control's name in the form: "cmdExtract".
  [[nodiscard]] const std::string& name() const { return name_; }

  // The caption, or the contents of a box. In captions "&" stands before the access key.
  [[nodiscard]] const std::string& text() const { return text_; }
  [[nodiscard]] bool enabled() const { return enabled_; }
  [[nodiscard]] bool visible() const { return visible_; }

  void SetEnabled(bool enabled) { Set(enabled_, enabled, Aspect::kEnabled); }
  void SetVisible(bool visible) { Set(visible_, visible, Aspect::kVisible); }
  // Moves the keyboard focus to this control. Without a window nothing happens.
  void SetFocus() { Notify(Aspect::kFocus); }

  // The binder sets it while the form has a window. It is called after a property has changed.
  std::function<void(Aspect)> changed;

 protected:
  // Assigns a property and calls `changed`. Does nothing and returns false when the value is the same.
  template <typename T>
  bool Set(T& property, T value, Aspect aspect) {
    if (property == value) return false;
    property = std::move(value);
    Notify(aspect);
    return true;
  }
  void Notify(Aspect aspect) {
    if (changed) changed(aspect);
  }

 private:
  std::string name_;

 protected:
  std::string text_;

 private:
  bool enabled_ = true;
  bool visible_ = true;
};

// A push button.
class Button : public Control {
 public:
  using Control::Control;
  void Accept(ControlVisitor& visitor) override;
  void SetText(std::string text) { Set(text_, std::move(text), Aspect::kText); }
  // The user has pressed the button, by mouse, by Space or Enter, or by its access key.
  std::function<void()> Click;
};

// A text that the user cannot edit.
class Label : public Control {
 public:
  using Control::Control;
  void Accept(ControlVisitor& visitor) override;
  void SetText(std::string text) { Set(text_, std::move(text), Aspect::kText); }

  // The events of a label that behaves like a link: the pointer moves over it, leaves it, or clicks it.
  std::function<void()> MouseMove, MouseLeave, Click;
  // Empty: the toolkit's own colour for texts.
  [[nodiscard]] std::optional<Color> color() const { return color_; }
  [[nodiscard]] bool underlined() const { return underlined_; }
  void SetColor(Color color) { Set(color_, std::optional<Color>(color), Aspect::kColor); }
  void SetUnderlined(bool underlined) { Set(underlined_, underlined, Aspect::kColor); }

 private:
  std::optional<Color> color_;
  bool underlined_ = false;
};

// A box with a text that the user edits.
class TextBox : public Control {
 public:
  using Control::Control;
  void Accept(ControlVisitor& visitor) override;
  std::size_t max_length = 0;    // in characters, for what the user types; 0: no limit
  bool multi_line = false;       // lines end in CR LF
  std::function<void()> Change;  // the text differs from before: the user has edited it, or SetText was called

  // Replaces the text. Calls Change when it differs.
  void SetText(std::string text) {
    if (Set(text_, std::move(text), Aspect::kText) && Change) Change();
  }
  void MoveCaretToEnd() { Notify(Aspect::kCaret); }
  // For the binder and tests: the user has edited the text.
  void UserText(std::string text) {
    if (text_ == text) return;
    text_ = std::move(text);
    if (Change) Change();
  }
};

// A box with a check mark.
class CheckBox : public Control {
 public:
  using Control::Control;
  void Accept(ControlVisitor& visitor) override;
  [[nodiscard]] bool checked() const { return checked_; }
  std::function<void()> Click;  // the state has changed: the user has clicked, or SetChecked was called
  void SetChecked(bool checked) {
    if (Set(checked_, checked, Aspect::kChecked) && Click) Click();
  }
  // For the binder and tests: the user has clicked the box.
  void UserClick() {
    checked_ = !checked_;
    Notify(Aspect::kChecked);
    if (Click) Click();
  }

 private:
  bool checked_ = false;
};

// A round button of a group in which one button at most is selected.
class OptionButton : public Control {
 public:
  using Control::Control;
  void Accept(ControlVisitor& visitor) override;
  std::vector<OptionButton*> group;  // the other buttons of the group
  [[nodiscard]] bool selected() const { return selected_; }
  std::function<void()> Click;  // the button has become selected, by the user or by Select
  // Selects this button and clears the others. Does nothing when it is selected already.
  void Select() {
    if (selected_) return;
    for (OptionButton* other : group) other->Set(other->selected_, false, Aspect::kChecked);
    Set(selected_, true, Aspect::kChecked);
    if (Click) Click();
  }

 private:
  bool selected_ = false;
};

// A list of texts in which the user selects.
class ListBox : public Control {
 public:
  using Control::Control;
  void Accept(ControlVisitor& visitor) override;
  bool sorted = false;              // SetItems sorts, ASCII letter case ignored
  bool multi_select = false;        // the user may select several items
  std::function<void()> Click;      // the user has changed the selection
  std::function<void()> DeleteKey;  // the user has pressed Delete while the list has the focus

  [[nodiscard]] const std::vector<std::string>& items() const { return items_; }
  [[nodiscard]] bool selected(std::size_t index) const { return index < selected_.size() && selected_[index]; }
  [[nodiscard]] std::size_t SelectedCount() const;
  // Replaces all items. None of the new ones is selected.
  void SetItems(std::vector<std::string> items);
  void Clear() { SetItems({}); }
  // For the binder and tests: the user has changed the selection. One flag for each item.
  void UserSelect(std::vector<bool> selected);

 private:
  std::vector<std::string> items_;
  std::vector<bool> selected_;
};

// A text box with a list that drops down below it.
class ComboBox : public Control {
 public:
  using Control::Control;
  void Accept(ControlVisitor& visitor) override;
  bool editable = true;          // false: the user can only pick an item
  std::string hint;              // shown in grey while the text is empty
  std::function<void()> Change;  // the text differs from before: the user has typed, or SetText was called
  std::function<void()> Click;   // the user has picked an item; text() is that item
  std::function<void()> GotFocus;

  [[nodiscard]] const std::vector<std::string>& items() const { return items_; }
  void SetItems(std::vector<std::string> items) { Set(items_, std::move(items), Aspect::kItems); }
  void SetText(std::string text) {
    if (Set(text_, std::move(text), Aspect::kText) && Change) Change();
  }
  void UserText(std::string text) {
    if (text_ == text) return;
    text_ = std::move(text);
    if (Change) Change();
  }
  void MoveCaretToEnd() { Notify(Aspect::kCaret); }
  // For the binder and tests: the user has picked the item at `index`. The text changes without a Change event, and
  // Click is called.
  void UserPick(std::size_t index);

 private:
  std::vector<std::string> items_;
};

// A table of rows and columns. The model does not hold the cells: it knows the number of rows, and the binder asks
// CellText and CellColor for what it shows. So a million rows cost nothing.
class ListView : public Control {
 public:
  using Control::Control;
  void Accept(ControlVisitor& visitor) override;
  struct Column {
    std::string caption;
    int width;           // in pixels at 96 dots per inch; the binder may widen it to fill the window
    bool fixed = false;  // it stays as wide as it is in a wider window
  };
  std::vector<Column> columns;
  // Rows and columns count from 0. Called whenever a cell is drawn, sorted or copied, so both must be fast.
  std::function<std::string(std::uint32_t row, int column)> CellText;
  std::function<std::optional<Color>(std::uint32_t row, int column)> CellColor;  // empty: the toolkit's own colour
  std::function<void()> DblClick;  // the user has double-clicked the selected row, or pressed Enter on it
  std::function<void()> Miss;      // the user has clicked where there is no row

  // An entry of the context menu: something that the user can do with the marked rows.
  struct Command {
    std::string caption;   // "Copy &address\tCtrl+C": the part behind the tab is shown as the shortcut
    char control_key = 0;  // the letter that runs the command together with Ctrl; 0: no shortcut
    // `rows` are the marked rows in the order in which they are shown; at least one, if the command needs rows.
    std::function<void(const std::vector<std::uint32_t>& rows)> run;
    std::function<bool()> offered = {};  // whether the list has this command now; empty: always
    bool needs_rows = true;
    bool apart = false;  // a line parts it from the entry before

    [[nodiscard]] bool CanRun(bool any_marked) const { return (!offered || offered()) && (any_marked || !needs_rows); }
  };
  std::vector<Command> commands;

  [[nodiscard]] std::uint32_t rows() const { return rows_; }
  [[nodiscard]] std::optional<std::uint32_t> selected() const { return selected_; }
  // Changes the number of rows, and clears a selection that lies behind the end. The binder may wait a moment and show
  // several new counts at once.
  void SetRows(std::uint32_t rows) {
    if (selected_ && *selected_ >= rows) selected_.reset();
    Set(rows_, rows, Aspect::kItems);
  }
  void ClearSelection() { Set(selected_, std::optional<std::uint32_t>(), Aspect::kSelection); }
  // For the binder and tests: the user has selected `row`, or none.
  void UserSelect(std::optional<std::uint32_t> row) { selected_ = row; }

 private:
  std::uint32_t rows_ = 0;
  std::optional<std::uint32_t> selected_;
};

// A bar of short texts at the lower edge of a window.
class StatusBar : public Control {
 public:
  StatusBar(std::string name, std::size_t panels) : Control(std::move(name)), panels_(panels) {}
  void Accept(ControlVisitor& visitor) override;
  [[nodiscard]] std::size_t panels() const { return panels_.size(); }
  // Panels count from 1. The number must be one that exists.
  [[nodiscard]] const std::string& panel(std::size_t number) const { return panels_[number - 1]; }
  void SetPanel(std::size_t number, std::string text) { Set(panels_[number - 1], std::move(text), Aspect::kText); }

 private:
  std::vector<std::string> panels_;
};

// A row of tabs. The form shows and hides the panels that belong to them.
class TabStrip : public Control {
 public:
  TabStrip(std::string name, std::vector<std::string> captions)
      : Control(std::move(name)), captions_(std::move(captions)) {}
  void Accept(ControlVisitor& visitor) override;
  [[nodiscard]] const std::vector<std::string>& captions() const { return captions_; }
  [[nodiscard]] std::size_t selected() const { return selected_; }
  // A tab was selected, by the user or by Select, even when it was the selected one before.
  std::function<void()> Click;
  void Select(std::size_t index) {
    selected_ = index;
    Notify(Aspect::kSelection);
    if (Click) Click();
  }

 private:
  std::vector<std::string> captions_;
  std::size_t selected_ = 0;
};

// A picture, a line, or a container of other controls. It has no behaviour of its own.
class Panel : public Control {
 public:
  using Control::Control;
  void Accept(ControlVisitor& visitor) override;
};

// An entry of a menu.
class MenuItem : public Control {
 public:
  using Control::Control;
  void Accept(ControlVisitor& visitor) override;
  // Whether the item is a line between other items, which the user cannot choose. Its text is "-".
  [[nodiscard]] bool is_separator() const { return text_ == "-"; }
  std::function<void()> Click;
};

// A menu that pops up at the pointer.
class PopupMenu {
 public:
  explicit PopupMenu(std::string title = {}) : caption(std::move(title)) {}

  const std::string caption;     // names the menu; not shown
  std::vector<MenuItem*> items;  // in order

  // The binder sets it. It pumps until the user has chosen an item or left the menu, and then calls the Click of the
  // chosen item.
  std::function<void(const std::vector<MenuItem*>& items)> show;
  // Shows the menu at the pointer. Pumps. Without a toolkit nothing happens.
  void PopUp() {
    if (show) show(items);
  }
};

// A repeating timer. It ticks while it is enabled and a TimerBinding (ui/timer_binding.h) ties it to an event loop.
class Timer : public Control {
 public:
  Timer(std::string name, std::chrono::milliseconds interval, bool enabled)
      : Control(std::move(name)), interval_(interval) {
    if (!enabled) SetEnabled(false);
  }
  void Accept(ControlVisitor& visitor) override;
  [[nodiscard]] std::chrono::milliseconds interval() const { return interval_; }
  std::function<void()> Tick;

 private:
  std::chrono::milliseconds interval_;
};

// What a toolkit does with each kind of control. A kind that a toolkit forgets does not compile.
class ControlVisitor {
 public:
  virtual ~ControlVisitor() = default;
  virtual void Visit(Button& button) = 0;
  virtual void Visit(Label& label) = 0;
  virtual void Visit(TextBox& box) = 0;
  virtual void Visit(CheckBox& box) = 0;
  virtual void Visit(OptionButton& option) = 0;
  virtual void Visit(ListBox& list) = 0;
  virtual void Visit(ComboBox& combo) = 0;
  virtual void Visit(ListView& list) = 0;
  virtual void Visit(StatusBar& bar) = 0;
  virtual void Visit(TabStrip& tabs) = 0;
  virtual void Visit(Panel& panel) = 0;
  virtual void Visit(MenuItem& item) = 0;
  virtual void Visit(Timer& timer) = 0;
};

// A window with its controls. A form lives as long as the program. Its window comes and goes: Load is called before it
// appears, Unload as it goes, and the form keeps the state of its controls in between.
class Form {
 public:
  explicit Form(std::string name, std::string caption = {}) : name_(std::move(name)), caption_(std::move(caption)) {}
  virtual ~Form() = default;
  Form(const Form&) = delete;
  Form& operator=(const Form&) = delete;

  [[nodiscard]] const std::string& name() const { return name_; }
  [[nodiscard]] const std::string& caption() const { return caption_; }
  void SetCaption(std::string caption);

  // Returns every control in tab order. The binder finds the native control of each by its name.
  [[nodiscard]] virtual std::vector<Control*> Controls() = 0;

  // Called once before the window appears.
  virtual void Load() {}
  // Called as the window goes.
  virtual void Unload() {}
  // The user has pressed F1.
  std::function<void()> Help;
  // What the system menu of the window offers behind the system's own entries. Set before the window appears.
  std::vector<MenuItem*> system_menu;

  [[nodiscard]] bool loaded() const { return loaded_; }
  [[nodiscard]] bool shown() const { return shown_; }

  // Loads the form without showing it. Does nothing when it is loaded.
  void EnsureLoaded();
  // Shows the window, and loads the form first when necessary.
  void Show();
  // The same, and pumps until the form has been unloaded. The user can work in no other window meanwhile.
  void ShowModal();
  // Hides the window. The form stays loaded.
  void Hide();
  // Unloads the form: its window goes.
  void Close();

  // What the binder does for a form. Without a binder the functions are empty, and a form shows nothing.
  struct Window {
    std::function<void()> create, show, run_modal, hide, destroy, caption_changed;
  };
  Window window;

 private:
  std::string name_;
  std::string caption_;
  bool loaded_ = false;
  bool shown_ = false;
};

}  // namespace quenlar::ui
