#include "cli/terminal_text.h"

namespace quenlar {
namespace {

bool IsTail(unsigned char byte) { return (byte & 0xC0) == 0x80; }

// The length in bytes of the character that begins at `at`, or 0 where no well-formed one begins.
std::size_t CharacterLength(std::string_view text, std::size_t at) {
  const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(at + i < text.size() ? text[at + i] : 0); };
  const unsigned char first = byte(0);
  if (first < 0x80) return 1;
  if (first >= 0xC2 && first <= 0xDF) return IsTail(byte(1)) ? 2 : 0;
  if (first >= 0xE0 && first <= 0xEF) {
    const bool overlong = first == 0xE0 && byte(1) < 0xA0;
    const bool surrogate = first == 0xED && byte(1) >= 0xA0;
    return IsTail(byte(1)) && IsTail(byte(2)) && !overlong && !surrogate ? 3 : 0;
  }
  if (first >= 0xF0 && first <= 0xF4) {
    const bool overlong = first == 0xF0 && byte(1) < 0x90;
    const bool too_high = first == 0xF4 && byte(1) >= 0x90;
    return IsTail(byte(1)) && IsTail(byte(2)) && IsTail(byte(3)) && !overlong && !too_high ? 4 : 0;
  }
  return 0;
}

// Steers a terminal or a line: C0 but the tab, DEL, C1 (U+0080 to U+009F), the separators and the marks of writing
// direction.
bool IsControl(std::string_view character) {
  const auto first = static_cast<unsigned char>(character[0]);
  if (character.size() == 1) return (first < 0x20 && first != '\t') || first == 0x7F;
  if (character.size() == 2) return first == 0xC2 && static_cast<unsigned char>(character[1]) < 0xA0;
  if (character.substr(0, 2) == "\xE2\x80") {
    const auto last = static_cast<unsigned char>(character[2]);
    return last >= 0xA8 && last <= 0xAE;
  }
  return character.substr(0, 2) == "\xE2\x81" && static_cast<unsigned char>(character[2]) >= 0xA6 &&
         static_cast<unsigned char>(character[2]) <= 0xA9;
}

}  // namespace

std::string ForTerminal(std::string_view text) {
  std::string shown;
  shown.reserve(text.size());
  for (std::size_t at = 0; at < text.size();) {
    const std::size_t length = CharacterLength(text, at);
    const std::string_view character = text.substr(at, length == 0 ? 1 : length);
    if (length == 0 || IsControl(character)) {
      shown += '?';
    } else {
      shown += character;
    }
    at += character.size();
  }
  return shown;
}

std::string_view FirstColumns(std::string_view utf8, int columns) {
  std::size_t at = 0;
  for (; at < utf8.size(); ++at) {
    if (!IsTail(static_cast<unsigned char>(utf8[at])) && columns-- <= 0) break;
  }
  return utf8.substr(0, at);
}

bool IsUtf8(std::string_view text) {
  for (std::size_t at = 0; at < text.size();) {
    const std::size_t length = CharacterLength(text, at);
    if (length == 0) return false;
    at += length;
  }
  return true;
}

}  // namespace quenlar
