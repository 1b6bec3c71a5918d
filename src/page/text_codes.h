// The ways in which scripts, link targets and data attributes write their characters.
#pragma once

#include <string>
#include <string_view>

namespace quenlar {

// Scripts and JSON: \uXXXX, \xXX, \/ and \' are decoded once, from left to right, \n and its like become a blank, and
// two backslashes one. Every other backslash stays, with what is behind it.
void DecodeEscapes(std::string_view script, std::string& decoded);

// Percent signs with two hexadecimal digits behind them become bytes; others stay.
void DecodePercentSigns(std::string_view text, std::string& decoded);

// Hexadecimal digits, two a byte; the first byte is the key with which the others were combined by exclusive or. False
// for anything else.
[[nodiscard]] bool DecodeKeyedHex(std::string_view hex, std::string& decoded);

// The characters in the opposite order. Bytes that are not UTF-8 count as a character each.
void Reverse(std::string_view text, std::string& reversed);

}  // namespace quenlar
