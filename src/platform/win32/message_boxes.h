// Message boxes of Windows.
#pragma once

#include "platform/message_boxes.h"

namespace quenlar {

// A box is modal for the active window of the thread, or for all of its windows when none is active.
class Win32MessageBoxes final : public MessageBoxes {
 public:
  BoxAnswer Show(const std::string& text, const std::string& title, BoxIcon icon, BoxButtons buttons) override;
};

}  // namespace quenlar
