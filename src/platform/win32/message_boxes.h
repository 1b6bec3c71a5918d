// Message boxes of Windows.
#pragma once

#include "platform/message_boxes.h"

namespace quenlar {

// Modal for the thread's active window, or for all of its windows where none is active.
class Win32MessageBoxes final : public MessageBoxes {
 public:
  BoxAnswer Show(const std::string& text, const std::string& title, BoxIcon icon, BoxButtons buttons) override;
};

}  // namespace quenlar
