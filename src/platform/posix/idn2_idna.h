// Host names beyond ASCII by the library of GNU, libidn2.
#pragma once

#include "platform/idna.h"

namespace quenlar {

// The library knows the characters of its own Unicode version, and refuses some that IDNA 2008 excludes although the
// contract takes them. Hyphens in any place and common symbols pass all the same. A label that has characters beyond
// ASCII is refused when its coded form is longer than 63 bytes.
class Idn2Idna final : public Idna {
 public:
  [[nodiscard]] Result<std::string> ToAscii(std::string_view domain) const override;
};

}  // namespace quenlar
