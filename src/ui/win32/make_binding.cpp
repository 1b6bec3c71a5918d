#include "ui/win32/make_binding.h"

#include "ui/win32/bar_bindings.h"
#include "ui/win32/list_bindings.h"
#include "ui/win32/list_view_binding.h"
#include "ui/win32/simple_bindings.h"

namespace quenlar::ui {

std::unique_ptr<ControlBinding> MakeBinding(Control& control, HWND window, BindingHost& host) {
  if (auto* button = dynamic_cast<Button*>(&control)) return std::make_unique<ButtonBinding>(*button, window, host);
  if (auto* label = dynamic_cast<Label*>(&control)) return std::make_unique<LabelBinding>(*label, window, host);
  if (auto* box = dynamic_cast<TextBox*>(&control)) return std::make_unique<TextBoxBinding>(*box, window, host);
  if (auto* box = dynamic_cast<CheckBox*>(&control)) return std::make_unique<CheckBoxBinding>(*box, window, host);
  if (auto* option = dynamic_cast<OptionButton*>(&control)) {
    return std::make_unique<OptionButtonBinding>(*option, window, host);
  }
  if (auto* list = dynamic_cast<ListBox*>(&control)) return std::make_unique<ListBoxBinding>(*list, window, host);
  if (auto* combo = dynamic_cast<ComboBox*>(&control)) return std::make_unique<ComboBoxBinding>(*combo, window, host);
  if (auto* list = dynamic_cast<ListView*>(&control)) return std::make_unique<ListViewBinding>(*list, window, host);
  if (auto* bar = dynamic_cast<StatusBar*>(&control)) return std::make_unique<StatusBarBinding>(*bar, window, host);
  if (auto* tabs = dynamic_cast<TabStrip*>(&control)) return std::make_unique<TabStripBinding>(*tabs, window, host);
  return std::make_unique<PanelBinding>(control, window, host);
}

}  // namespace quenlar::ui
