// The native window of a form: a dialog of the resources with its controls bound to the form's models.
#pragma once

#include <deque>
#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

#include "ui/controls.h"
#include "ui/win32/control_binding.h"
#include "ui/win32/dialog.h"
#include "ui/win32/dialog_template.h"
#include "ui/win32/windows_api.h"

namespace quenlar::ui {

class TabStripBinding;

class FormWindow final : public BindingHost, public std::enable_shared_from_this<FormWindow> {
 public:
  // Creates the window, hidden, with the models' state in its controls. Null when the system refuses. `owner` may be
  // null; an owned window stays in front of its owner. The form and the resources must outlive the window.
  [[nodiscard]] static std::shared_ptr<FormWindow> Create(Form& form, const Dialog& dialog, const Resources& resources,
                                                          HWND owner);
  ~FormWindow() override;

  // Null once it is destroyed.
  [[nodiscard]] HWND window() const { return window_; }
  // Shows the window in the foreground; one that is minimised gets its size back.
  void Show();
  void Hide();
  // Shows the form's caption in the title bar.
  void ShowCaption();
  // Takes the window away; tasks that were posted are not run any more. The form stays.
  void Destroy();

  // Keys that the system's dialog keyboard handling does not know or that it would take away. True when done.
  bool FilterKey(const MSG& message);

  // BindingHost
  [[nodiscard]] int dpi() const override { return dpi_; }
  [[nodiscard]] HFONT font() const override { return font_; }
  [[nodiscard]] HFONT underlined_font() const override { return underlined_font_; }
  [[nodiscard]] HICON MakeIcon(int width, int height) const override;
  void RequestFlush() override;
  void Post(std::function<void()> task) override;
  void FocusOn(HWND control) override;
  void FocusNext() override;
  [[nodiscard]] bool moving_focus() const override { return moving_focus_; }

 private:
  struct PageWindow {
    std::string name;
    HWND window;
    DialogTemplate layout;
  };

  FormWindow(Form& form, const Dialog& dialog, const Resources& resources);
  [[nodiscard]] HWND CreateDialogWindow(const DialogTemplate& dialog, HWND parent);
  static INT_PTR CALLBACK Procedure(HWND window, UINT message, WPARAM w, LPARAM l);
  INT_PTR OnMessage(HWND window, UINT message, WPARAM w, LPARAM l);
  INT_PTR OnWindowMessage(UINT message, WPARAM w, LPARAM l);
  INT_PTR OnControlMessage(HWND window, UINT message, WPARAM w, LPARAM l);

  void CreatePages();
  void BindControls();
  [[nodiscard]] HWND FindNative(const std::string& name) const;
  void AddToSystemMenu();
  [[nodiscard]] bool ChooseInSystemMenu(WPARAM command);
  void LoadIcons();
  void MakeFonts();
  void PlaceFirst(HWND owner);
  [[nodiscard]] SIZE OuterSize(SIZE size) const;
  [[nodiscard]] SIZE MinimumSize() const;
  void OnSize();
  void OnDpiChanged(int dpi, const RECT& suggested);
  void LayOut();
  void LayOutPages();
  void PlaceItems(HWND parent, const DialogTemplate& layout, SIZE grown);
  void MoveFocus(WPARAM w, LPARAM l);  // parameters of WM_NEXTDLGCTL
  void FlushAll();
  void RunPosted();
  void Close();
  [[nodiscard]] int Scaled(int pixels) const { return MulDiv(pixels, dpi_, 96); }
  [[nodiscard]] ControlBinding* BindingOf(HWND control) const;

  Form& form_;
  Dialog dialog_;
  const Resources& resources_;
  HWND window_ = nullptr;
  int dpi_ = 96;
  HFONT font_ = nullptr;
  HFONT underlined_font_ = nullptr;
  DialogTemplate layout_;
  std::vector<PageWindow> pages_;
  std::vector<std::unique_ptr<ControlBinding>> bindings_;
  std::unordered_map<HWND, ControlBinding*> by_window_;
  TabStripBinding* tabs_ = nullptr;
  std::deque<std::function<void()>> posted_;
  bool flush_requested_ = false;
  bool moving_focus_ = false;
};

}  // namespace quenlar::ui
