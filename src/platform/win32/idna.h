// Host names beyond ASCII by Windows.
#pragma once

#include "platform/idna.h"

namespace quenlar {

// The system maps characters by IDNA 2003, which knows an older set of them, and checks neither joiners nor
// right-to-left rules. A label "xn--..." is not looked into; labels of more than 63 bytes are refused.
class Win32Idna final : public Idna {
 public:
  [[nodiscard]] Result<std::string> ToAscii(std::string_view domain) const override;
};

}  // namespace quenlar
