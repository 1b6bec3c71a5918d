// Where on a page an address stands.
#pragma once

#include <cstdint>
#include <string_view>

namespace quenlar {

enum class AddressPlace : std::uint8_t { kText, kMailto, kAttribute, kScript, kComment, kProtected };

// As lists and databases spell it.
[[nodiscard]] constexpr std::string_view PlaceName(AddressPlace place) {
  switch (place) {
    case AddressPlace::kText:
      return "text";
    case AddressPlace::kMailto:
      return "mailto";
    case AddressPlace::kAttribute:
      return "attribute";
    case AddressPlace::kScript:
      return "script";
    case AddressPlace::kComment:
      return "comment";
    case AddressPlace::kProtected:
      break;
  }
  return "protected";
}

}  // namespace quenlar
