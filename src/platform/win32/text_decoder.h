// Charsets by the code pages of Windows.
#pragma once

#include "platform/text_decoder.h"

namespace quenlar {

class Win32TextDecoder final : public TextDecoder {
 public:
  [[nodiscard]] std::string ToUtf8(Charset charset, std::string_view bytes) const override;
};

}  // namespace quenlar
