#include "forms/frm_why.h"

#include <utility>

#include "base/ascii.h"

namespace quenlar {

frmWhy::frmWhy() : Form("frmWhy", "Why ?") {
  txtAnswer.multi_line = true;
  cmdAsk.Click = [this] { Ask(); };
  cmdClose.Click = [this] { Close(); };
}

std::vector<ui::Control*> frmWhy::Controls() { return {&txtWhat, &cmdAsk, &txtAnswer, &cmdClose}; }

void frmWhy::Fill(const std::string& what, Answer answer) {
  answer_ = std::move(answer);
  txtWhat.SetText(what);
  Ask();
}

void frmWhy::Ask() {
  const std::string what(TrimBlanks(txtWhat.text()));
  txtAnswer.SetText(what.empty() || !answer_ ? "" : answer_(what));
}

}  // namespace quenlar
