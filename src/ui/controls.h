// Toolkit-neutral models of a form's controls. A form holds them as members and all of its logic works on them; a
// binder ties each to a real control and keeps both in step; a test uses them as they are. A model draws nothing.
//
// Two directions: the form changes a property (Set...), the model tells its binder (`changed`); the user does
// something, the binder updates the model's value silently (User...) and calls the event that the form has set.
#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace quenlar::ui {

// Colours in the blue-green-red order of the platform: 0xBBGGRR.
using Color = std::uint32_t;

// What of a control has changed, for the binder.
enum class Aspect { kEnabled, kVisible, kText, kItems, kSelection, kChecked, kColor, kFocus, kCaret };

class Control {
 public:
  explicit Control(std::string name, std::string text = {}) : name_(std::move(name)), text_(std::move(text)) {}
  virtual ~Control() = default;
  Control(const Control&) = delete;
  Control& operator=(const Control&) = delete;

  // The control's name in the form: "cmdExtract".
  [[nodiscard]] const std::string& name() const { return name_; }

  // Caption or contents, UTF-8. "&" marks the access key in captions.
  [[nodiscard]] const std::string& text() const { return text_; }
  [[nodiscard]] bool enabled() const { return enabled_; }
  [[nodiscard]] bool visible() const { return visible_; }

  void SetEnabled(bool enabled) { Set(enabled_, enabled, Aspect::kEnabled); }
  void SetVisible(bool visible) { Set(visible_, visible, Aspect::kVisible); }
  void SetFocus() { Notify(Aspect::kFocus); }

  // Set by the binder; called after a property has changed. Empty while no window exists.
  std::function<void(Aspect)> changed;

 protected:
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

class Button : public Control {
 public:
  using Control::Control;
  void SetText(std::string text) { Set(text_, std::move(text), Aspect::kText); }
  std::function<void()> Click;
};

class Label : public Control {
 public:
  using Control::Control;
  void SetText(std::string text) { Set(text_, std::move(text), Aspect::kText); }

  // A label that behaves like a link: the pointer moves over it, leaves it, clicks it.
  std::function<void()> MouseMove, MouseLeave, Click;
  [[nodiscard]] std::optional<Color> color() const { return color_; }
  [[nodiscard]] bool underlined() const { return underlined_; }
  void SetColor(Color color) { Set(color_, std::optional<Color>(color), Aspect::kColor); }
  void SetUnderlined(bool underlined) { Set(underlined_, underlined, Aspect::kColor); }

 private:
  std::optional<Color> color_;
  bool underlined_ = false;
};

class TextBox : public Control {
 public:
  using Control::Control;
  std::size_t max_length = 0;  // characters; 0 is no limit
  bool multi_line = false;
  std::function<void()> Change;  // also after SetText, as soon as the text differs

  void SetText(std::string text) {
    if (Set(text_, std::move(text), Aspect::kText) && Change) Change();
  }
  void MoveCaretToEnd() { Notify(Aspect::kCaret); }
  // The user has edited the text.
  void UserText(std::string text) {
    if (text_ == text) return;
    text_ = std::move(text);
    if (Change) Change();
  }
};

class CheckBox : public Control {
 public:
  using Control::Control;
  [[nodiscard]] bool checked() const { return checked_; }
  std::function<void()> Click;  // after the user's click, and after SetChecked as soon as the state differs
  void SetChecked(bool checked) {
    if (Set(checked_, checked, Aspect::kChecked) && Click) Click();
  }
  void UserClick() {
    checked_ = !checked_;
    Notify(Aspect::kChecked);
    if (Click) Click();
  }

 private:
  bool checked_ = false;
};

// One of a group: selecting one clears the others of `group`.
class OptionButton : public Control {
 public:
  using Control::Control;
  std::vector<OptionButton*> group;  // the others
  [[nodiscard]] bool selected() const { return selected_; }
  std::function<void()> Click;  // as soon as the button becomes selected, by the user or by Select
  void Select() {
    if (selected_) return;
    for (OptionButton* other : group) other->Set(other->selected_, false, Aspect::kChecked);
    Set(selected_, true, Aspect::kChecked);
    if (Click) Click();
  }

 private:
  bool selected_ = false;
};

// A list box; sorted ones keep their items in order (ASCII case ignored).
class ListBox : public Control {
 public:
  using Control::Control;
  bool sorted = false;
  bool multi_select = false;
  std::function<void()> Click;      // the selection has changed by the user
  std::function<void()> DeleteKey;  // the Delete key, while the list has the keyboard

  [[nodiscard]] const std::vector<std::string>& items() const { return items_; }
  [[nodiscard]] bool selected(std::size_t index) const { return index < selected_.size() && selected_[index]; }
  [[nodiscard]] std::size_t SelectedCount() const;
  void SetItems(std::vector<std::string> items);
  void Clear() { SetItems({}); }
  void UserSelect(std::vector<bool> selected);

 private:
  std::vector<std::string> items_;
  std::vector<bool> selected_;
};

// An edit box with a list below it.
class ComboBox : public Control {
 public:
  using Control::Control;
  bool editable = true;
  std::string hint;              // shown in grey while the text is empty
  std::function<void()> Change;  // the text differs: typed, or SetText
  std::function<void()> Click;   // the user picked an entry of the list; text() is that entry already
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
  // Picking an entry changes the text without a Change event; Click follows.
  void UserPick(std::size_t index);

 private:
  std::vector<std::string> items_;
};

// A virtual report list: the rows lie elsewhere, the model knows their number and asks for what is shown.
class ListView : public Control {
 public:
  using Control::Control;
  struct Column {
    std::string caption;
    int width;  // in pixels at 96 dpi, before the window's layout widens it
  };
  std::vector<Column> columns;
  std::function<std::string(std::uint32_t row, int column)> CellText;
  std::function<std::optional<Color>(std::uint32_t row, int column)> CellColor;
  std::function<void()> DblClick;
  std::function<void()> Miss;  // a mouse button went down where no row is

  // What the user can do with the rows that are marked: the entries of the context menu. The rows come in the order in
  // which they are shown; there is at least one.
  struct Command {
    std::string caption;   // "Copy &address\tCtrl+C": what stands behind the tab is shown as the shortcut
    char control_key = 0;  // the letter that runs it together with Ctrl
    std::function<void(const std::vector<std::uint32_t>& rows)> run;
  };
  std::vector<Command> commands;

  [[nodiscard]] std::uint32_t rows() const { return rows_; }
  [[nodiscard]] std::optional<std::uint32_t> selected() const { return selected_; }
  // The binder may show a new count a moment later, together with others.
  void SetRows(std::uint32_t rows) {
    if (selected_ && *selected_ >= rows) selected_.reset();
    Set(rows_, rows, Aspect::kItems);
  }
  void ClearSelection() { Set(selected_, std::optional<std::uint32_t>(), Aspect::kSelection); }
  void UserSelect(std::optional<std::uint32_t> row) { selected_ = row; }

 private:
  std::uint32_t rows_ = 0;
  std::optional<std::uint32_t> selected_;
};

class StatusBar : public Control {
 public:
  StatusBar(std::string name, std::size_t panels) : Control(std::move(name)), panels_(panels) {}
  [[nodiscard]] std::size_t panels() const { return panels_.size(); }
  // Panels are numbered from 1.
  [[nodiscard]] const std::string& panel(std::size_t number) const { return panels_[number - 1]; }
  void SetPanel(std::size_t number, std::string text) { Set(panels_[number - 1], std::move(text), Aspect::kText); }

 private:
  std::vector<std::string> panels_;
};

class TabStrip : public Control {
 public:
  TabStrip(std::string name, std::vector<std::string> captions)
      : Control(std::move(name)), captions_(std::move(captions)) {}
  [[nodiscard]] const std::vector<std::string>& captions() const { return captions_; }
  [[nodiscard]] std::size_t selected() const { return selected_; }
  std::function<void()> Click;  // a page is selected, by the user or by Select, also the one that was selected before
  void Select(std::size_t index) {
    selected_ = index;
    Notify(Aspect::kSelection);
    if (Click) Click();
  }

 private:
  std::vector<std::string> captions_;
  std::size_t selected_ = 0;
};

// A picture, a line or a container panel.
class Panel : public Control {
 public:
  using Control::Control;
};

class MenuItem : public Control {
 public:
  using Control::Control;
  // A line between items, of which nobody can choose; its text is "-".
  [[nodiscard]] bool is_separator() const { return text_ == "-"; }
  std::function<void()> Click;
};

// A menu that pops up at the pointer.
class PopupMenu {
 public:
  explicit PopupMenu(std::string title = {}) : caption(std::move(title)) {}

  const std::string caption;     // names the menu; not shown
  std::vector<MenuItem*> items;  // in order

  // Set by the binder of the toolkit. Pumps until the user has chosen or gone elsewhere; the Click of the chosen item
  // is called at the end.
  std::function<void(const std::vector<MenuItem*>& items)> show;
  void PopUp() {
    if (show) show(items);
  }
};

class Timer : public Control {
 public:
  Timer(std::string name, std::chrono::milliseconds interval, bool enabled)
      : Control(std::move(name)), interval_(interval) {
    if (!enabled) SetEnabled(false);
  }
  [[nodiscard]] std::chrono::milliseconds interval() const { return interval_; }
  std::function<void()> Tick;

 private:
  std::chrono::milliseconds interval_;
};

// What every window can do. The binder sets the functions while the window exists; without one they do nothing.
class Form {
 public:
  explicit Form(std::string name, std::string caption = {}) : name_(std::move(name)), caption_(std::move(caption)) {}
  virtual ~Form() = default;
  Form(const Form&) = delete;
  Form& operator=(const Form&) = delete;

  [[nodiscard]] const std::string& name() const { return name_; }
  [[nodiscard]] const std::string& caption() const { return caption_; }
  void SetCaption(std::string caption);

  // Every control, in tab order; the binder finds the dialog's controls by these names.
  [[nodiscard]] virtual std::vector<Control*> Controls() = 0;

  // Events: Load before the window is shown for the first time since it was created, Unload as it goes; Help at F1.
  virtual void Load() {}
  virtual void Unload() {}
  std::function<void()> Help;

  [[nodiscard]] bool loaded() const { return loaded_; }
  [[nodiscard]] bool shown() const { return shown_; }

  // Loads without showing; a loaded form stays as it is.
  void EnsureLoaded();
  // Load when necessary. ShowModal pumps and returns when the form has been unloaded.
  void Show();
  void ShowModal();
  void Hide();
  void Close();  // unloads

  // Set by the binder of the toolkit.
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
