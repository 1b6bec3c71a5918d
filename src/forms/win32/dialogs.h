// The tables of the program's dialogs, for the binder. The one place where the names and numbers of controls meet.
#pragma once

#include "ui/win32/dialog.h"

namespace quenlar {

// The dialogs, control numbers and icon in the resources of `program`.
[[nodiscard]] ui::Resources ProgramResources(HINSTANCE program);

}  // namespace quenlar
