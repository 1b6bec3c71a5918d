#include "ui/win32/control_binding.h"

#include "platform/win32/wide.h"

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

}  // namespace quenlar::ui
