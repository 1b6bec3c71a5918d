// What the binder is told about the windows of one program. Everything else stands in the dialogs of its resources
// (dialog_items.h).
#pragma once

#include <span>

#include "ui/win32/windows_api.h"

namespace quenlar::ui {

// How the window of a form opens. A form without a row of its own opens as these defaults say.
struct Dialog {
  const char* form;
  // Opens over the window that is in use, stays in front of it and goes with it.
  bool owned = false;
  // The size in which the window opens, with its frame, in pixels at 96 dots per inch. The template then has the
  // smallest size of the window, with its frame too. Without a size here the window opens in its template's size, which
  // is that of the inside.
  SIZE first{};
  // A window without such a size opens by so many pixels wider, at 96 dots per inch.
  int wider = 0;
};

struct Resources {
  HINSTANCE program;
  int icon;                         // the number of the icon that all windows have
  std::span<const Dialog> dialogs;  // must outlive all who have them
};

}  // namespace quenlar::ui
