// Bindings of the status bar and the tab strip.
#pragma once

#include "ui/win32/control_binding.h"

namespace quenlar::ui {

// Shows the panels' texts. Texts that follow each other quickly are shown together, so a fast run does not flicker.
class StatusBarBinding final : public ControlBinding {
 public:
  StatusBarBinding(StatusBar& bar, HWND window, BindingHost& host) : ControlBinding(bar, window, host), bar_(bar) {}
  void Start() override;
  void OnPlaced(int grown) override;
  void Flush() override;

 protected:
  void Apply(Aspect aspect) override;

 private:
  StatusBar& bar_;
  std::vector<std::string> shown_;
};

class TabStripBinding final : public ControlBinding {
 public:
  TabStripBinding(TabStrip& tabs, HWND window, BindingHost& host) : ControlBinding(tabs, window, host), tabs_(tabs) {}
  void Start() override;
  LRESULT OnNotify(const NMHDR& header) override;

  // Chooses the tab with this access key. False when there is none.
  bool ChooseByKey(wchar_t key);
  // Selects the tab that many places further on (negative: back). Behind the last tab comes the first.
  void Step(int direction);
  // The rectangle for the pages, in client coordinates of the window around the strip.
  [[nodiscard]] RECT PageRoom() const;

 protected:
  void Apply(Aspect aspect) override;

 private:
  void UserSelect(std::size_t index);

  TabStrip& tabs_;
};

}  // namespace quenlar::ui
