#include "netstat/last_change.h"

#include <charconv>
#include <cmath>

#include "base/ascii.h"

namespace quenlar {
namespace {

constexpr std::size_t kKeptCharacters = 5;
constexpr double kFirstDate = -657434;   // 0100-01-01
constexpr double kEndOfDates = 2958466;  // the day after 9999-12-31

void CutTrailingZeros(std::string& digits) {
  if (digits.find('.') == digits.npos) return;
  digits.erase(digits.find_last_not_of('0') + 1);
  if (digits.back() == '.') digits.pop_back();
}

}  // namespace

std::string SingleText(float value) {
  char buffer[64];
  const bool plain = std::fabs(value) < 1e7F;
  const auto end = plain ? std::to_chars(buffer, buffer + sizeof buffer, value, std::chars_format::general, 7)
                         : std::to_chars(buffer, buffer + sizeof buffer, value, std::chars_format::scientific, 6);
  std::string text(buffer, end.ptr);
  const std::size_t exponent = text.find('e');
  if (exponent == text.npos) {
    CutTrailingZeros(text);
    return text;
  }
  std::string digits = text.substr(0, exponent);
  CutTrailingZeros(digits);
  return digits + "E" + text.substr(exponent + 1);
}

std::optional<double> DateFromNumberText(std::string_view text) {
  if (!text.empty() && text.front() == '+') text.remove_prefix(1);
  const std::string_view digits = text.substr(text.empty() || text.front() != '-' ? 0 : 1);
  if (digits.empty() || !(IsDigit(digits.front()) || digits.front() == '.')) return std::nullopt;
  double days = 0;
  const char* const end_of_text = text.data() + text.size();
  const auto [end, error] = std::from_chars(text.data(), end_of_text, days);
  if (error != std::errc() || end != end_of_text) return std::nullopt;
  if (days < kFirstDate || days >= kEndOfDates) return std::nullopt;
  return days;
}

std::optional<double> LastChangeDate(std::uint32_t last_change) {
  const std::string text = SingleText(static_cast<float>(static_cast<std::int32_t>(last_change)));
  return DateFromNumberText(std::string_view(text).substr(0, kKeptCharacters));
}

}  // namespace quenlar
