// Message boxes. Show pumps until the user has answered.
#pragma once

#include <string>

namespace quenlar {

enum class BoxIcon { kInformation, kExclamation, kStop };
enum class BoxButtons { kOk, kYesNo };
enum class BoxAnswer { kOk, kYes, kNo };

class MessageBoxes {
 public:
  virtual ~MessageBoxes() = default;
  virtual BoxAnswer Show(const std::string& text, const std::string& title, BoxIcon icon, BoxButtons buttons) = 0;
};

}  // namespace quenlar
