// Host names beyond ASCII by the library of GNU, libidn2.
#pragma once

#include "platform/idna.h"

namespace quenlar {

// The library knows the characters of its own Unicode version, and refuses some that IDNA 2008 excludes although the
// contract takes them: symbols such as hearts, two hyphens or one at an end beside a character beyond ASCII.
class Idn2Idna final : public Idna {
 public:
  [[nodiscard]] Result<std::string> ToAscii(std::string_view domain) const override;
};

}  // namespace quenlar
