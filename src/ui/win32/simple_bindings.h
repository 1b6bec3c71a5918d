// Bindings of buttons, labels, text boxes, check boxes and option buttons.
#pragma once

#include "ui/win32/control_binding.h"

namespace quenlar::ui {

class ButtonBinding final : public BindingTo<Button> {
 public:
  using BindingTo::BindingTo;
  void Start() override;
  void OnCommand(UINT code) override;

 protected:
  void Apply(Aspect aspect) override;
};

// A label. One with a Click event is a link: it is as small as its text, stands in the middle of its place, changes
// with the pointer, and can be reached and followed by the keyboard.
class LabelBinding final : public BindingTo<Label> {
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
  [[nodiscard]] bool is_link() const { return static_cast<bool>(model().Click); }

  bool pointer_inside_ = false;
  bool pressed_ = false;
};

// A container, a line, or the program's picture. The picture is loaded at the size of its place.
class PanelBinding final : public BindingTo<Panel> {
 public:
  using BindingTo::BindingTo;
  ~PanelBinding() override;
  void OnPlaced(int grown) override;

 private:
  HICON picture_ = nullptr;
};

class TextBoxBinding final : public BindingTo<TextBox> {
 public:
  using BindingTo::BindingTo;
  void Start() override;
  void OnCommand(UINT code) override;
  bool OnKey(WPARAM key) override;

 protected:
  void Apply(Aspect aspect) override;

 private:
  bool applying_ = false;
};

class CheckBoxBinding final : public BindingTo<CheckBox> {
 public:
  using BindingTo::BindingTo;
  void Start() override;
  void OnCommand(UINT code) override;

 protected:
  void Apply(Aspect aspect) override;
};

class OptionButtonBinding final : public BindingTo<OptionButton> {
 public:
  using BindingTo::BindingTo;
  void Start() override;
  void OnCommand(UINT code) override;

 protected:
  void Apply(Aspect aspect) override;
};

}  // namespace quenlar::ui
