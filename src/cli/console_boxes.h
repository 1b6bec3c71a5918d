// Message boxes on a terminal: the text goes to standard error, the answer comes from standard input.
#pragma once

#include <string>

#include "cli/system.h"
#include "platform/message_boxes.h"

namespace quenlar {

class ConsoleBoxes final : public MessageBoxes {
 public:
  explicit ConsoleBoxes(Console& console) : console_(console) {}

  // "y" and "yes", in any letter case, answer a question with yes. Everything else is a no, the end of the input too.
  BoxAnswer Show(const std::string& text, const std::string& title, BoxIcon icon, BoxButtons buttons) override;

 private:
  Console& console_;
};

}  // namespace quenlar
