// The code page of systems without one: Windows-1252 in every locale.
#pragma once

#include <string>
#include <utility>

#include "base/windows1252.h"
#include "platform/code_page.h"

namespace quenlar {

class Windows1252CodePage : public CodePage {
 public:
  [[nodiscard]] std::string ToUtf8(std::string bytes) const override { return Windows1252ToUtf8(std::move(bytes)); }
  [[nodiscard]] std::string FromUtf8(std::string text) const override { return Utf8ToWindows1252(std::move(text)); }
};

}  // namespace quenlar
