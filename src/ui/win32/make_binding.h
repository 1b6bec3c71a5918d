// Finds the binding for a control.
#pragma once

#include <memory>

#include "ui/win32/control_binding.h"

namespace quenlar::ui {

// Makes the binding that fits the kind of the model; null for menu items and timers. `window` is the native control;
// it, the model and the host must outlive the binding.
[[nodiscard]] std::unique_ptr<ControlBinding> MakeBinding(Control& control, HWND window, BindingHost& host);

}  // namespace quenlar::ui
