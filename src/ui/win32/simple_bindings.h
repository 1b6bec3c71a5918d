// Bindings of buttons, labels, text boxes, check boxes and option buttons.
#pragma once

#include "ui/win32/control_binding.h"

namespace quenlar::ui {

class ButtonBinding final : public ControlBinding {
 public:
  ButtonBinding(Button& button, HWND window, BindingHost& host)
      : ControlBinding(button, window, host), button_(button) {}
  void Start() override;
  void OnCommand(UINT code) override;

 protected:
  void Apply(Aspect aspect) override;

 private:
  Button& button_;
};

// A label. One with a Click event is a link: it is as small as its text, stands in the middle of its place, changes
// with the pointer, and can be reached and followed by the keyboard.
class LabelBinding final : public ControlBinding {
 public:
  LabelBinding(Label& label, HWND window, BindingHost& host);
  ~LabelBinding() override;
  void Start() override;
  HBRUSH OnColor(HDC context) override;
  void OnPlaced(int grown) override;
  bool OnKey(WPARAM key) override;

 protected:
  void Apply(Aspect aspect) override;

 private:
  void Follow();
  void DrawFocus() const;
  static LRESULT CALLBACK LinkProcedure(HWND window, UINT message, WPARAM w, LPARAM l, UINT_PTR, DWORD_PTR self);
  [[nodiscard]] bool is_link() const { return static_cast<bool>(label_.Click); }

  Label& label_;
  bool pointer_inside_ = false;
  bool pressed_ = false;
};

// A container, a line, or the program's picture. The picture is loaded at the size of its place.
class PanelBinding final : public ControlBinding {
 public:
  using ControlBinding::ControlBinding;
  ~PanelBinding() override;
  void OnPlaced(int grown) override;

 private:
  HICON picture_ = nullptr;
};

class TextBoxBinding final : public ControlBinding {
 public:
  TextBoxBinding(TextBox& box, HWND window, BindingHost& host) : ControlBinding(box, window, host), box_(box) {}
  void Start() override;
  void OnCommand(UINT code) override;
  bool OnKey(WPARAM key) override;

 protected:
  void Apply(Aspect aspect) override;

 private:
  TextBox& box_;
  bool applying_ = false;
};

class CheckBoxBinding final : public ControlBinding {
 public:
  CheckBoxBinding(CheckBox& box, HWND window, BindingHost& host) : ControlBinding(box, window, host), box_(box) {}
  void Start() override;
  void OnCommand(UINT code) override;

 protected:
  void Apply(Aspect aspect) override;

 private:
  CheckBox& box_;
};

class OptionButtonBinding final : public ControlBinding {
 public:
  OptionButtonBinding(OptionButton& option, HWND window, BindingHost& host)
      : ControlBinding(option, window, host), option_(option) {}
  void Start() override;
  void OnCommand(UINT code) override;

 protected:
  void Apply(Aspect aspect) override;

 private:
  OptionButton& option_;
};

}  // namespace quenlar::ui
