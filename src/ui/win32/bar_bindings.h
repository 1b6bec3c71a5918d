// Bindings of the status bar and the tab strip.
#pragma once

#include "ui/win32/control_binding.h"

namespace quenlar::ui {

// Shows the panels' texts. Texts that follow each other quickly are shown together, so a fast run does not flicker.
class StatusBarBinding final : public BindingTo<StatusBar> {
 public:
  using BindingTo::BindingTo;
  void Start() override;
  void OnPlaced(int grown) override;
  void Flush() override;

 protected:
  void Apply(Aspect aspect) override;

 private:
  std::vector<std::string> shown_;
};

class TabStripBinding final : public BindingTo<TabStrip> {
 public:
  using BindingTo::BindingTo;
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
};

}  // namespace quenlar::ui
