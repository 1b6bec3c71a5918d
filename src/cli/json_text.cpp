#include "cli/json_text.h"

#include <fmt/format.h>

namespace quenlar {
namespace {

// Only texts can hold these characters, so escaping them in the finished line is right wherever they stand.
std::string EscapeLineBreakers(const std::string& dumped) {
  std::string escaped;
  escaped.reserve(dumped.size() + 1);
  for (std::size_t at = 0; at < dumped.size(); ++at) {
    const auto byte = [&](std::size_t i) {
      return static_cast<unsigned char>(at + i < dumped.size() ? dumped[at + i] : 0);
    };
    if (byte(0) == 0x7F) {
      escaped += "\\u007f";
    } else if (byte(0) == 0xC2 && byte(1) < 0xA0) {
      escaped += fmt::format("\\u{:04x}", byte(1));
      at += 1;
    } else if (byte(0) == 0xE2 && byte(1) == 0x80 && (byte(2) == 0xA8 || byte(2) == 0xA9)) {
      escaped += byte(2) == 0xA8 ? "\\u2028" : "\\u2029";
      at += 2;
    } else {
      escaped += dumped[at];
    }
  }
  return escaped;
}

}  // namespace

std::string JsonLine(const Json& value) {
  return EscapeLineBreakers(value.dump(-1, ' ', false, Json::error_handler_t::replace)) + "\n";
}

Json FoundAddressJson(const FoundAddress& record) {
  return {{"URL", record.URL}, {"Address", record.Address}, {"Title", record.Title}, {"TagOnly", record.TagOnly}};
}

}  // namespace quenlar
