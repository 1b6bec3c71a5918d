// Saves the run when the user logs off or the system shuts down, which ends the program from outside.
#pragma once

#include <functional>

#include "ui/win32/windows_api.h"

namespace quenlar::ui {

// Owns a hidden window, because only top-level windows are told of the end of a session. `save` has a few seconds, and
// the system ends the process when it returns. It may pump.
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
