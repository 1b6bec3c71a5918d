// One control model tied to one native control: the model's changes go to the control, the user's doings to the model.
#pragma once

#include <functional>
#include <string>

#include "ui/controls.h"
#include "ui/win32/windows_api.h"

namespace quenlar::ui {

// The window around a binding, as the binding sees it.
class BindingHost {
 public:
  virtual ~BindingHost() = default;
  [[nodiscard]] virtual int dpi() const = 0;
  [[nodiscard]] virtual HFONT font() const = 0;
  [[nodiscard]] virtual HFONT underlined_font() const = 0;
  // The program's icon in this size, in pixels. The caller destroys it. Null when the system refuses.
  [[nodiscard]] virtual HICON MakeIcon(int width, int height) const = 0;
  // Calls the binding's Flush a moment later, once for all requests until then.
  virtual void RequestFlush() = 0;
  // Runs `task` from the message loop, after the message at hand; not at all when the window has gone by then.
  virtual void Post(std::function<void()> task) = 0;
  // Moves the keyboard focus the way dialogs do, so that the default button follows.
  virtual void FocusOn(HWND control) = 0;
  virtual void FocusNext() = 0;
  // Whether the focus moves without the user's going to a control: the window gets back the focus that it had, or its
  // first, or the program moves it.
  [[nodiscard]] virtual bool moving_focus() const = 0;
};

class ControlBinding {
 public:
  ControlBinding(Control& control, HWND window, BindingHost& host);
  virtual ~ControlBinding();
  ControlBinding(const ControlBinding&) = delete;
  ControlBinding& operator=(const ControlBinding&) = delete;

  [[nodiscard]] HWND window() const { return window_; }

  // Shows the whole state of the model. Called once, when all bindings of the window are there.
  virtual void Start();

  // Messages of the native control, from the window around it. OnCommand: WM_COMMAND with this code. OnNotify:
  // WM_NOTIFY; what it returns is the answer to the message. OnColor: the control is about to be drawn; returns the
  // brush of its background, null for the system's own. OnContextMenu: the user asks for a menu at a place of the
  // screen.
  virtual void OnCommand([[maybe_unused]] UINT code) {}
  virtual LRESULT OnNotify([[maybe_unused]] const NMHDR& header) { return 0; }
  virtual HBRUSH OnColor([[maybe_unused]] HDC context) { return nullptr; }
  virtual void OnContextMenu([[maybe_unused]] POINT place) {}
  // A key that goes down in the control, before the dialog's own keyboard handling. True when done with it.
  virtual bool OnKey([[maybe_unused]] WPARAM key) { return false; }

  // The control has its place; `grown` is what the window is wider than in its template, in pixels.
  virtual void OnPlaced([[maybe_unused]] int grown) {}

  // Shows what has been put off by RequestFlush.
  virtual void Flush() {}

 protected:
  virtual void Apply(Aspect aspect);
  void ApplyEnabled();

  [[nodiscard]] BindingHost& host() const { return host_; }
  LRESULT Send(UINT message, WPARAM w = 0, LPARAM l = 0) const { return SendMessageW(window_, message, w, l); }
  template <typename T>
  LRESULT Send(UINT message, WPARAM w, T* l) const {
    return Send(message, w, reinterpret_cast<LPARAM>(l));
  }
  // Pixels of this window's screen for pixels at 96 dots per inch.
  [[nodiscard]] int Scaled(int pixels) const { return MulDiv(pixels, host_.dpi(), 96); }
  // Whether Ctrl alone is held down: with Alt it is AltGr, which types letters.
  [[nodiscard]] static bool ControlHeld() { return GetKeyState(VK_CONTROL) < 0 && GetKeyState(VK_MENU) >= 0; }
  [[nodiscard]] std::string NativeText() const;
  void SetNativeText(const std::string& text);

 private:
  Control& control_;
  HWND window_;
  BindingHost& host_;
  HWND focus_went_to_ = nullptr;  // when the control was disabled with the focus on it
};

// A binding that knows the kind of its model.
template <typename Model>
class BindingTo : public ControlBinding {
 public:
  BindingTo(Model& model, HWND window, BindingHost& host) : ControlBinding(model, window, host), model_(model) {}

 protected:
  [[nodiscard]] Model& model() const { return model_; }

 private:
  Model& model_;
};

}  // namespace quenlar::ui
