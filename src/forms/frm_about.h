// The about box.
#pragma once

#include <vector>

#include "platform/shell.h"
#include "ui/controls.h"

namespace quenlar {

// Shows the product's name and a link to its web page. The contents stand in the middle of the window's width.
class frmAbout final : public ui::Form {
 public:
  explicit frmAbout(Shell& shell);

  ui::Panel picMark{"picMark"};
  ui::Label lblSoftwareVersion{"lblSoftwareVersion"};
  ui::Panel Line1{"Line1"}, Line2{"Line2"};
  ui::Label lblNote{"lblNote", "You can visit web page : "};
  ui::Label lblWebPage{"lblWebPage"};
  ui::Button cmdOK{"cmdOK", "OK"};

  [[nodiscard]] std::vector<ui::Control*> Controls() override;
  void Load() override;
};

}  // namespace quenlar
