#include "forms/link_label.h"

#include <utility>

namespace quenlar {

void StyleAsLink(ui::Label& label, std::function<void()> open) {
  label.SetColor(kLinkIdle);
  label.MouseMove = [&label] {
    label.SetColor(kLinkHover);
    label.SetUnderlined(true);
  };
  label.MouseLeave = [&label] {
    label.SetUnderlined(false);
    label.SetColor(kLinkIdle);
  };
  label.Click = [&label, open = std::move(open)] {
    label.SetUnderlined(false);
    open();
  };
}

}  // namespace quenlar
