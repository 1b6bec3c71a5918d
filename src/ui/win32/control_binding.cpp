#include "ui/win32/control_binding.h"

#include "platform/win32/wide.h"
#include "ui/win32/bar_bindings.h"
#include "ui/win32/list_bindings.h"
#include "ui/win32/list_view_binding.h"
#include "ui/win32/simple_bindings.h"

namespace quenlar::ui {

ControlBinding::ControlBinding(Control& control, HWND window, BindingHost& host)
    : control_(control), window_(window), host_(host) {
  control_.changed = [this](Aspect aspect) { Apply(aspect); };
}

ControlBinding::~ControlBinding() { control_.changed = nullptr; }

void ControlBinding::Start() {
  Apply(Aspect::kEnabled);
  Apply(Aspect::kVisible);
}

void ControlBinding::Apply(Aspect aspect) {
  if (aspect == Aspect::kEnabled) ApplyEnabled();
  if (aspect == Aspect::kVisible) ShowWindow(window_, control_.visible() ? SW_SHOW : SW_HIDE);
  if (aspect == Aspect::kFocus) host_.FocusOn(window_);
}

// A control that is disabled with the focus on it would swallow the keyboard, so the focus goes on to the next one; it
// comes back when the control is enabled again before the user has gone elsewhere.
void ControlBinding::ApplyEnabled() {
  const HWND focus = GetFocus();
  if (!control_.enabled() && (focus == window_ || IsChild(window_, focus))) {
    host_.FocusNext();
    focus_went_to_ = GetFocus();
  }
  EnableWindow(window_, control_.enabled());
  if (control_.enabled()) {
    if (focus_went_to_ && focus == focus_went_to_) host_.FocusOn(window_);
    focus_went_to_ = nullptr;
  }
}

std::string ControlBinding::NativeText() const {
  std::wstring text(static_cast<std::size_t>(GetWindowTextLengthW(window_)) + 1, L'\0');
  text.resize(static_cast<std::size_t>(GetWindowTextW(window_, text.data(), static_cast<int>(text.size()))));
  return win32::FromWide(text);
}

void ControlBinding::SetNativeText(const std::string& text) {
  if (NativeText() != text) SetWindowTextW(window_, win32::ToWide(text).c_str());
}

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
