// The about box.
#pragma once

#include <vector>

#include "platform/shell.h"
#include "ui/controls.h"

namespace quenlar {

// The window keeps all of its contents in the middle of its width.
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
