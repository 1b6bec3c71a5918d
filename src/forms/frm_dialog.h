// The box that offers a newer version.
#pragma once

#include <functional>
#include <vector>

#include "platform/shell.h"
#include "state/settings.h"
#include "ui/controls.h"

namespace quenlar {

// The user chooses between an upgrade now, which starts the upgrader and ends the program, and the next time, which
// ends the question until the next start. It is not modal, because a run may go on.
class frmDialog final : public ui::Form {
 public:
  // `end_at_once` ends the program and leaves the notification icon, because the upgrader replaces the program.
  frmDialog(Settings& settings, Shell& shell, const Installation& installation, std::function<void()> end_at_once);

  ui::Label lblVersion{"lblVersion", "New Version published"};
  ui::OptionButton optUpgrade[2] = {ui::OptionButton("optUpgrade0", "Upgrade now"),
                                    ui::OptionButton("optUpgrade1", "Upgrade next time")};
  ui::Button cmdOK{"cmdOK", "OK"};
  ui::TextBox txtDumb{"txtDumb", "Text1"};  // only takes the focus

  [[nodiscard]] std::vector<ui::Control*> Controls() override;
  void Load() override;

 private:
  void cmdOK_Click();

  Settings& settings_;
  Shell& shell_;
  const Installation& installation_;
  std::function<void()> end_at_once_;
};

}  // namespace quenlar
