// Message boxes. Show pumps until the user has answered.
#pragma once

#include <string>

#include "base/status.h"

namespace quenlar {

inline constexpr const char* kProductCaption = "Brenvy Quenlar Pro 3.0";

enum class BoxIcon { kInformation, kExclamation, kStop };
enum class BoxButtons { kOk, kYesNo };
enum class BoxAnswer { kOk, kYes, kNo };

// A failure in the form in which the program speaks: its message, ending in " !".
[[nodiscard]] inline std::string SentenceOf(const Status& failure) {
  return failure.message().ends_with(" !") ? failure.message() : failure.message() + " !";
}

class MessageBoxes {
 public:
  virtual ~MessageBoxes() = default;
  virtual BoxAnswer Show(const std::string& text, const std::string& title, BoxIcon icon, BoxButtons buttons) = 0;
};

}  // namespace quenlar
