#include "engine/upgrade_check.h"

#include <cmath>

#include "base/number.h"
#include "platform/message_boxes.h"

namespace quenlar {

bool NewerVersionPublished(std::string_view page) {
  constexpr std::string_view kCaption = kProductCaption;
  const double published = LeadingNumber(page.substr(0, page.find("\r\n")));
  const double current = LeadingNumber(kCaption.substr(kCaption.rfind(' ') + 1));
  return std::isfinite(published) && published > current;
}

}  // namespace quenlar
