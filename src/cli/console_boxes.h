// Message boxes on a terminal: the text on standard error, the answer from standard input.
#pragma once

#include <string>

#include "cli/system.h"
#include "platform/message_boxes.h"

namespace quenlar {

class ConsoleBoxes final : public MessageBoxes {
 public:
  explicit ConsoleBoxes(Console& console) : console_(console) {}

  // A question is answered with yes by "y" or "yes" (any case) alone; the end of the input is a no.
  BoxAnswer Show(const std::string& text, const std::string& title, BoxIcon icon, BoxButtons buttons) override;

 private:
  Console& console_;
};

}  // namespace quenlar
