// How the windows of the program open, for the binder.
#pragma once

#include "ui/win32/dialog.h"

namespace quenlar {

// The dialogs and the icon in the resources of `program`.
[[nodiscard]] ui::Resources ProgramResources(HINSTANCE program);

}  // namespace quenlar
