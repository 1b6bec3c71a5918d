// Hears that the user logs off or the system shuts down, which ends the program without any of its own doings.
#pragma once

#include <functional>

#include "ui/win32/windows_api.h"

namespace quenlar::ui {

// Owns a hidden window, since only top-level windows hear of it. `save` has a few seconds; the process is ended when
// it returns. It may pump.
class SessionEnd {
 public:
  SessionEnd(HINSTANCE program, std::function<void()> save);
  ~SessionEnd();
  SessionEnd(const SessionEnd&) = delete;
  SessionEnd& operator=(const SessionEnd&) = delete;

 private:
  static LRESULT CALLBACK Procedure(HWND window, UINT message, WPARAM w, LPARAM l);

  std::function<void()> save_;
  HWND window_;
};

}  // namespace quenlar::ui
