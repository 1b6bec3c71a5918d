// Host names beyond ASCII without the system's tables: what RFC 3492 says, and no more.
#pragma once

#include <string>
#include <utility>

#include "base/ascii.h"
#include "base/windows1252.h"
#include "platform/domain_labels.h"
#include "platform/idna.h"
#include "platform/punycode.h"

namespace quenlar {

// Letters are made small as far as PunycodeLabel does, nothing else is mapped, and only what is not UTF-8 or too long
// is refused. Labels in ASCII stay.
class FakeIdna final : public Idna {
 public:
  [[nodiscard]] Result<std::string> ToAscii(std::string_view domain) const override {
    return CodeLabels(domain, [](std::string_view label) -> Result<std::string> {
      if (IsAscii(label)) return Lower(label);
      auto coded = PunycodeLabel(label);
      if (!coded) return Status(StatusKind::kFormat, "no label");
      return std::move(*coded);
    });
  }
};

}  // namespace quenlar
