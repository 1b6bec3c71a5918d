#include "forms/frm_about.h"

#include <string>

#include "base/product.h"
#include "forms/link_label.h"
#include "forms/open_web_page.h"
#include "state/settings.h"

namespace quenlar {

frmAbout::frmAbout(Shell& shell) : Form("frmAbout") {
  StyleAsLink(lblWebPage, [&shell] { OpenWebPage(shell, kHomePage); });
  cmdOK.Click = [this] { Close(); };
}

std::vector<ui::Control*> frmAbout::Controls() {
  return {&picMark, &lblSoftwareVersion, &Line1, &lblNote, &Line2, &cmdOK, &lblWebPage};
}

void frmAbout::Load() {
  SetCaption(std::string("About ") + kProductCaption);
  lblSoftwareVersion.SetText(kProductCaption);
  lblWebPage.SetText(kHomePage);
  lblWebPage.MouseLeave();  // the box may have closed under the pointer
}

}  // namespace quenlar
