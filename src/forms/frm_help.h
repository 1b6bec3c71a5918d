// The online help box.
#pragma once

#include <string>
#include <vector>

#include "base/product.h"
#include "platform/shell.h"
#include "ui/controls.h"

namespace quenlar {

// Shows a link to the help on the web, and closes when the user follows it. The contents stand in the middle of the
// window's width.
class frmHelp final : public ui::Form {
 public:
  explicit frmHelp(Shell& shell);

  ui::Panel picMark{"picMark"};
  ui::Label Label1{"Label1", std::string(kProductName) + " Help"};
  ui::Label Label2{"Label2", "Connect to the Internet to view the online help files"};
  ui::Label lblHelp{"lblHelp", "Open Online Help"};

  [[nodiscard]] std::vector<ui::Control*> Controls() override;
  void Load() override;
};

}  // namespace quenlar
