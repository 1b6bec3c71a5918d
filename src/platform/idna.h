// Host names beyond ASCII as the domain name system spells them, by the system's own tables.
#pragma once

#include <string>
#include <string_view>

#include "base/status.h"

namespace quenlar {

class Idna {
 public:
  virtual ~Idna() = default;

  // The domain with every label in ASCII and in lower case, by Unicode Technical Standard 46, non-transitional, with
  // joiners and right-to-left rules checked. Hyphens, STD3 characters and lengths are not checked, and dots stay, empty
  // labels too. "。" and its like are dots. Fails with kFormat where the domain is not UTF-8 or has a character or a
  // label "xn--..." that the standard or the system's tables refuse. The result is ASCII, but can have any character
  // of it. For domains with a byte beyond ASCII; an ASCII domain needs nothing but lower case.
  [[nodiscard]] virtual Result<std::string> ToAscii(std::string_view domain) const = 0;
};

}  // namespace quenlar
