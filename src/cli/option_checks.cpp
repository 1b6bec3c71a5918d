#include "cli/option_checks.h"

#include <algorithm>
#include <charconv>
#include <string_view>
#include <system_error>

#include "base/ascii.h"
#include "base/number.h"
#include "engine/time_text.h"
#include "settings/web_checks.h"

namespace quenlar {
namespace {

constexpr std::string_view kHttp = "http://", kHttps = "https://";

}  // namespace

std::vector<std::string> TidyWords(const std::vector<std::string>& words) {
  std::vector<std::string> tidy;
  for (const std::string& word : words) {
    const std::string trimmed(TrimBlanks(word));
    if (!trimmed.empty() && std::find(tidy.begin(), tidy.end(), trimmed) == tidy.end()) tidy.push_back(trimmed);
  }
  return tidy;
}

std::string WithoutTrailingSlash(const std::string& value) {
  return value.ends_with('/') ? value.substr(0, value.size() - 1) : value;
}

std::string CheckHostUrl(const std::string& value) {
  std::string_view rest = value;
  if (StartsWithIgnoreCase(rest, kHttp)) {
    rest.remove_prefix(kHttp.size());
  } else if (StartsWithIgnoreCase(rest, kHttps)) {
    rest.remove_prefix(kHttps.size());
  } else {
    rest = "";
  }
  if (rest.ends_with('/')) rest.remove_suffix(1);
  return IsHostAndPort(rest) ? "" : "must be a scheme and a host, such as http://search.example:8080";
}

std::string CheckProxyUrl(const std::string& value) {
  const std::string wrong = CheckHostUrl(value);
  const bool is_http = StartsWithIgnoreCase(value, kHttp);
  return wrong.empty() && is_http ? "" : "must be an HTTP proxy, such as http://127.0.0.1:8080";
}

std::string CheckNotEmpty(const std::string& value) { return value.empty() ? "must not be empty" : ""; }

std::string CheckOneLine(const std::string& value) {
  return value.find_first_of("\r\n") == std::string::npos ? "" : "must be one line";
}

std::string CheckNumber(const std::string& value, std::uint64_t lowest, std::uint64_t highest) {
  std::uint64_t number = 0;
  const char* const text_end = value.data() + value.size();
  const auto [end, error] = std::from_chars(value.data(), text_end, number);
  if (error == std::errc() && end == text_end && number >= lowest && number <= highest) return "";
  return "must be a number from " + std::to_string(lowest) + " to " + std::to_string(highest);
}

std::string CheckSeconds(const std::string& value, int highest) {
  double number = 0;
  const char* const text_end = value.data() + value.size();
  const auto [end, error] = std::from_chars(value.data(), text_end, number);
  // Nothing compares to "nan", so both bounds refuse it.
  if (error == std::errc() && end == text_end && number >= 0 && number <= highest) return "";
  return "must be a number from 0 to " + std::to_string(highest);
}

std::string CheckPositive(const std::string& value) {
  return LeadingNumber(value) > 0 ? "" : "must be a number above 0";
}

std::string CheckTime(const std::string& value) {
  return ParseTime(value) ? "" : "must be a date or a time such as 2026-11-22 or 2026-11-22T13:20:00Z";
}

}  // namespace quenlar
