// Ties forms to windows: a bound form has a window from its Load to its Unload.
#pragma once

#include <map>
#include <memory>

#include "platform/event_loop.h"
#include "ui/controls.h"
#include "ui/win32/dialog.h"
#include "ui/win32/windows_api.h"

namespace quenlar::ui {

class FormWindow;

// Gives every bound form a native window while it is loaded, and does what Show, ShowModal and Hide of the form ask
// for. For the thread that runs the message loop.
class Binder {
 public:
  // The loop must outlive the binder.
  Binder(const Resources& resources, EventLoop& loop) : resources_(resources), loop_(loop) {}
  ~Binder();
  Binder(const Binder&) = delete;
  Binder& operator=(const Binder&) = delete;

  // The form must have a dialog with its name in the resources, and outlive the binder.
  void Bind(Form& form);

  // The keyboard handling of dialogs. The message loop calls it with every message before it dispatches it. True: the
  // message is done with, and must not be dispatched.
  bool FilterMessage(MSG& message);

 private:
  [[nodiscard]] Dialog DialogOf(const Form& form) const;
  void Create(Form& form);
  void RunModal(Form& form);
  void Destroy(Form& form);
  void EnableOwner(Form& form);
  void CloseOwned(HWND owner);
  [[nodiscard]] FormWindow* WindowOf(Form& form) const;
  [[nodiscard]] HWND ActiveFormWindow() const;

  Resources resources_;
  EventLoop& loop_;
  std::map<Form*, std::shared_ptr<FormWindow>> windows_;  // null while the form is not loaded
  std::map<Form*, HWND> disabled_owners_;                 // of modal forms
};

}  // namespace quenlar::ui
