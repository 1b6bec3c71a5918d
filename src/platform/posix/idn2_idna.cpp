#include "platform/posix/idn2_idna.h"

#include <cstdint>
#include <memory>

#include <idn2.h>

#include "base/ascii.h"
#include "platform/domain_labels.h"

namespace quenlar {
namespace {

constexpr std::size_t kLongestLabel = 1024;

struct FreeText {
  void operator()(char* text) const { idn2_free(text); }
};

Result<std::string> CodeLabel(std::string_view label) {
  // The standard has made the capital sharp s a sharp s since; to the library it is "ss".
  const std::string spelled = ReplaceAll(label, "\xE1\xBA\x9E", "\xC3\x9F");
  // A NUL would end the text for the library. No name is that long, and the library takes long for long labels.
  if (label.find('\0') != label.npos || label.size() > kLongestLabel)
    return Status(StatusKind::kFormat, "no host name");
  char* coded = nullptr;
  const int code = idn2_to_ascii_8z(spelled.c_str(), &coded, IDN2_NFC_INPUT | IDN2_NONTRANSITIONAL);
  const std::unique_ptr<char, FreeText> owned(coded);
  if (code != IDN2_OK) return Status(StatusKind::kFormat, spelled + ": " + idn2_strerror(code));
  return std::string(coded);
}

}  // namespace

Result<std::string> Idn2Idna::ToAscii(std::string_view domain) const { return CodeLabels(domain, CodeLabel); }

}  // namespace quenlar
