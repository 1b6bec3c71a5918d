// Bindings of list boxes and combo boxes.
#pragma once

#include "ui/win32/control_binding.h"

namespace quenlar::ui {

class ListBoxBinding final : public ControlBinding {
 public:
  ListBoxBinding(ListBox& list, HWND window, BindingHost& host) : ControlBinding(list, window, host), list_(list) {}
  void Start() override;
  void OnCommand(UINT code) override;
  bool OnKey(WPARAM key) override;

 protected:
  void Apply(Aspect aspect) override;

 private:
  void FillItems();
  void TellSelection();
  void CopySelection() const;

  ListBox& list_;
};

class ComboBoxBinding final : public ControlBinding {
 public:
  ComboBoxBinding(ComboBox& combo, HWND window, BindingHost& host)
      : ControlBinding(combo, window, host), combo_(combo) {}
  void Start() override;
  void OnCommand(UINT code) override;
  bool OnKey(WPARAM key) override;

 protected:
  void Apply(Aspect aspect) override;

 private:
  void FillItems();
  void ShowText();
  void Picked();

  ComboBox& combo_;
  bool pick_posted_ = false;
};

}  // namespace quenlar::ui
