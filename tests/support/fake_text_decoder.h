// A text decoder of a system that has none of the charsets.
#pragma once

#include <string>
#include <string_view>

#include "base/windows1252.h"
#include "platform/text_decoder.h"

namespace quenlar {

class FakeTextDecoder final : public TextDecoder {
 public:
  [[nodiscard]] std::string ToUtf8(Charset, std::string_view bytes) const override {
    return Windows1252ToUtf8(std::string(bytes));
  }
};

}  // namespace quenlar
