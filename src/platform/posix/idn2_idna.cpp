#include "platform/posix/idn2_idna.h"

#include <cstddef>
#include <memory>
#include <optional>
#include <string>

#include <idn2.h>

#include "base/ascii.h"
#include "base/windows1252.h"
#include "platform/domain_labels.h"
#include "platform/punycode.h"
#include "platform/utf8.h"

namespace quenlar {
namespace {

constexpr std::size_t kLongestLabel = 1024;

struct FreeText {
  void operator()(char* text) const { idn2_free(text); }
};
using OwnedText = std::unique_ptr<char, FreeText>;

Status Refused(const std::string& label, int code) { return {StatusKind::kFormat, label + ": " + idn2_strerror(code)}; }

// The library's own answer; `code` is its result.
OwnedText Coded(const std::string& label, int& code) {
  char* coded = nullptr;
  code = idn2_to_ascii_8z(label.c_str(), &coded, IDN2_NFC_INPUT | IDN2_NONTRANSITIONAL);
  return OwnedText(coded);
}

// Characters that are their own mapping, and that the library refuses in a place or everywhere: the hyphen, and the
// blocks of dingbats, arrows, box drawings and pictures, in which nothing is mapped.
bool StandsForItself(char32_t code) {
  return code == '-' || code == 0x2020 || code == 0x2021 || (code >= 0x2190 && code < 0x2200) ||
         (code >= 0x2500 && code < 0x27C0) || (code >= 0x1F300 && code < 0x1F650) ||
         (code >= 0x1F680 && code < 0x1F6C6) || (code >= 0x1F910 && code < 0x1F940);
}

// Appends what the library makes of a piece of a label, before it is coded; false where it refuses the piece.
bool AppendMapped(const std::string& piece, std::string& mapped) {
  if (piece.empty()) return true;
  int code = IDN2_OK;
  const OwnedText coded = Coded(piece, code);
  if (code != IDN2_OK) return false;
  char* text = nullptr;
  code = idn2_to_unicode_8z8z(coded.get(), &text, 0);
  const OwnedText owned(text);
  if (code == IDN2_OK) mapped += text;
  return code == IDN2_OK;
}

// A label with hyphens and symbols where IDNA 2008 has none: what is between them is mapped piece by piece, and has to
// be a label when they are taken out.
std::optional<std::string> CodeAroundSymbols(std::string_view label) {
  std::string mapped, piece, others;
  while (!label.empty()) {
    const Utf8Character character = DecodeUtf8(label);
    if (character.bytes == 0) return std::nullopt;
    const std::string_view text = label.substr(0, character.bytes);
    label.remove_prefix(character.bytes);
    if (!StandsForItself(character.code)) {
      piece += text;
      others += text;
      continue;
    }
    if (!AppendMapped(piece, mapped)) return std::nullopt;
    piece.clear();
    mapped += text;
  }
  std::string unused;
  if (!AppendMapped(piece, mapped) || !AppendMapped(others, unused) || mapped.starts_with("xn--")) return std::nullopt;
  return IsAscii(mapped) ? Lower(mapped) : PunycodeLabel(mapped);
}

Result<std::string> CodeLabel(std::string_view label) {
  // The standard has made the capital sharp s a sharp s since; to the library it is "ss".
  const std::string spelled = ReplaceAll(label, "\xE1\xBA\x9E", "\xC3\x9F");
  // A NUL would end the text for the library. No name is that long, and the library takes long for long labels.
  if (label.find('\0') != label.npos || label.size() > kLongestLabel) return Refused(spelled, IDN2_TOO_BIG_LABEL);
  int code = IDN2_OK;
  const OwnedText coded = Coded(spelled, code);
  if (code == IDN2_OK) return std::string(coded.get());
  if (code == IDN2_DISALLOWED || code == IDN2_2HYPHEN || code == IDN2_HYPHEN_STARTEND) {
    if (auto around = CodeAroundSymbols(spelled)) return std::move(*around);
  }
  return Refused(spelled, code);
}

}  // namespace

Result<std::string> Idn2Idna::ToAscii(std::string_view domain) const { return CodeLabels(domain, CodeLabel); }

}  // namespace quenlar
