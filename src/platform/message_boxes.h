// Message boxes of the user interface.
#pragma once

#include <string>

namespace quenlar {

enum class BoxIcon { kInformation, kExclamation, kStop };
enum class BoxButtons { kOk, kYesNo };
enum class BoxAnswer { kOk, kYes, kNo };

class MessageBoxes {
 public:
  virtual ~MessageBoxes() = default;
  // Shows a box and pumps until the user has answered. With kOk the answer is always kOk.
  virtual BoxAnswer Show(const std::string& text, const std::string& title, BoxIcon icon, BoxButtons buttons) = 0;
};

}  // namespace quenlar
