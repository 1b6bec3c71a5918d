#include "engine/upgrade_check.h"

#include <cmath>

#include "base/number.h"
#include "base/product.h"

namespace quenlar {

bool NewerVersionPublished(std::string_view page) {
  const double published = LeadingNumber(page.substr(0, page.find("\r\n")));
  const double current = LeadingNumber(kProductVersion);
  return std::isfinite(published) && published > current;
}

}  // namespace quenlar
