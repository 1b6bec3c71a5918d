#include "forms/frm_help.h"

#include "base/product.h"
#include "forms/link_label.h"
#include "forms/open_web_page.h"
#include "state/settings.h"

namespace quenlar {

frmHelp::frmHelp(Shell& shell) : Form("frmHelp", std::string(kProductName) + " Online Help") {
  StyleAsLink(lblHelp, [this, &shell] {
    OpenWebPage(shell, kHomePage);
    Close();
  });
}

std::vector<ui::Control*> frmHelp::Controls() { return {&picMark, &Label1, &Label2, &lblHelp}; }

// The box closes under the pointer whenever its link is followed.
void frmHelp::Load() { lblHelp.MouseLeave(); }

}  // namespace quenlar
