#include "platform/web_client.h"

#include "base/ascii.h"

namespace quenlar {

const std::string* WebHead::Find(std::string_view name) const {
  for (const auto& [field, value] : fields) {
    if (EqualsIgnoreCase(field, name)) return &value;
  }
  return nullptr;
}

}  // namespace quenlar
