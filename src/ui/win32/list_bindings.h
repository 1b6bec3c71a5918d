// Bindings of list boxes and combo boxes.
#pragma once

#include "ui/win32/control_binding.h"

namespace quenlar::ui {

class ListBoxBinding final : public BindingTo<ListBox> {
 public:
  using BindingTo::BindingTo;
  void Start() override;
  void OnCommand(UINT code) override;
  bool OnKey(WPARAM key) override;

 protected:
  void Apply(Aspect aspect) override;

 private:
  void FillItems();
  void TellSelection();
  void CopySelection() const;
};

class ComboBoxBinding final : public BindingTo<ComboBox> {
 public:
  using BindingTo::BindingTo;
  void Start() override;
  void OnCommand(UINT code) override;
  bool OnKey(WPARAM key) override;

 protected:
  void Apply(Aspect aspect) override;

 private:
  void FillItems();
  void ShowText();
  void Picked();

  bool pick_posted_ = false;
};

}  // namespace quenlar::ui
