#include "platform/domain_labels.h"

#include <cstddef>

#include "base/ascii.h"
#include "base/windows1252.h"

namespace quenlar {
namespace {

constexpr std::string_view kDots[] = {".", "\xE3\x80\x82", "\xEF\xBC\x8E", "\xEF\xBD\xA1"};

// The bytes of the dot at the beginning of `text`, or 0.
std::size_t DotLength(std::string_view text) {
  for (const std::string_view dot : kDots) {
    if (text.starts_with(dot)) return dot.size();
  }
  return 0;
}

bool NeedsCoding(std::string_view label) { return StartsWithIgnoreCase(label, "xn--") || !IsAscii(label); }

}  // namespace

Result<std::string> CodeLabels(std::string_view domain, const LabelCoder& code) {
  std::string coded;
  for (;;) {
    std::size_t end = 0;
    while (end < domain.size() && DotLength(domain.substr(end)) == 0) ++end;
    const std::string_view label = domain.substr(0, end);
    if (NeedsCoding(label)) {
      Result<std::string> part = code(label);
      if (!part.ok()) return part.status();
      coded += part.value();
    } else {
      coded += Lower(label);
    }
    if (end == domain.size()) return coded;
    coded += '.';
    domain.remove_prefix(end + DotLength(domain.substr(end)));
  }
}

}  // namespace quenlar
