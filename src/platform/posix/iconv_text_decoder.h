// Charsets by iconv.
#pragma once

#include "platform/text_decoder.h"

namespace quenlar {

class IconvTextDecoder final : public TextDecoder {
 public:
  [[nodiscard]] std::string ToUtf8(Charset charset, std::string_view bytes) const override;
};

}  // namespace quenlar
