// Asks a collection why an address is listed or not, or why a page was visited or not.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "ui/controls.h"

namespace quenlar {

// A window with a question and its answer.
class frmWhy final : public ui::Form {
 public:
  // Gives the answer to the text of an address or a page, one sentence a line.
  using Answer = std::function<std::string(const std::string& what)>;

  frmWhy();

  ui::TextBox txtWhat{"txtWhat"};
  ui::Button cmdAsk{"cmdAsk", "&Ask"};
  ui::TextBox txtAnswer{"txtAnswer"};  // read only
  ui::Button cmdClose{"cmdClose", "Close"};

  // Asks for `what` at once, unless it is empty. The window may be shown already.
  void Fill(const std::string& what, Answer answer);

  [[nodiscard]] std::vector<ui::Control*> Controls() override;

 private:
  void Ask();

  Answer answer_;
};

}  // namespace quenlar
