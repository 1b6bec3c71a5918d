#include "forms/frm_dialog.h"

#include <utility>

#include "base/product.h"

namespace quenlar {

frmDialog::frmDialog(Settings& settings, Shell& shell, const Installation& installation,
                     std::function<void()> end_at_once)
    : Form("frmDialog", "Quenlar Upgrade Option"),
      settings_(settings),
      shell_(shell),
      installation_(installation),
      end_at_once_(std::move(end_at_once)) {
  optUpgrade[0].group = {&optUpgrade[1]};
  optUpgrade[1].group = {&optUpgrade[0]};
  for (ui::OptionButton& option : optUpgrade) {
    option.Click = [this] {
      if (shown()) txtDumb.SetFocus();  // what Load selects is nobody's click
    };
  }
  cmdOK.Click = [this] { cmdOK_Click(); };
}

std::vector<ui::Control*> frmDialog::Controls() {
  return {&lblVersion, &optUpgrade[0], &optUpgrade[1], &txtDumb, &cmdOK};
}

void frmDialog::Load() {
  SetCaption(std::string(kProductCaption) + " Upgrade");
  optUpgrade[0].Select();
}

void frmDialog::cmdOK_Click() {
  if (optUpgrade[0].selected()) {
    const std::string command = installation_.Below("Upgrade.exe ") + kInstallerPage;
    shell_.Start(command).Ignore("the program ends as told, whatever the upgrader does");
    end_at_once_();
    return;
  }
  // In memory alone: the next start asks again.
  settings_.NeverUpgradeFlag = 1;
  Close();
}

}  // namespace quenlar
