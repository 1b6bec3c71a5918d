#include "support/reference_report.h"

#include <ostream>

#include <boost/regex.hpp>
#include <gtest/gtest.h>

namespace quenlar {
namespace {

using Regex = boost::basic_regex<char, boost::cpp_regex_traits<char>>;
using Iterator = boost::regex_iterator<std::string::const_iterator, char, boost::cpp_regex_traits<char>>;

const std::string kAddress = "[a-z0-9._%+-]+@[a-z0-9.-]+\\.[a-z]{2,4}";
// The hyphen stands between a class and a character, where it is no range.
const std::string kUrl = "(http|https|ftp)://([\\w-]+\\.)+[\\w-]+(/[\\w\\-./?%&=]*)?";
const std::string kUrlOfRow = "(http|https|ftp)://([\\w-]+\\.)+[\\w-]+(/[\\w\\-./?%&=;~]*)?";
const std::string kTitle = "((\\s)*?|(\\s)*([\\s\\S]*?))";
const std::string kLineEnd = "\\r\\n";

Regex Compile(const std::string& pattern) {
  return Regex(pattern, boost::regex_constants::perl | boost::regex_constants::icase);
}

// Compiled once: that takes longer than to look through a short text.
struct Patterns {
  Regex row = Compile(kAddress + "(\\s)+" + kUrl + kTitle + kLineEnd);
  Regex address = Compile(kAddress);
  Regex url_of_row = Compile(kUrlOfRow);
  Regex padded_line = Compile(kAddress + "(\\s){7,}" + kLineEnd);
  Regex plain_line = Compile(kAddress + kLineEnd);
};

std::vector<std::string> Matches(const std::string& text, const Regex& regex) {
  std::vector<std::string> matches;
  for (Iterator match(text.begin(), text.end(), regex); match != Iterator(); ++match) matches.push_back(match->str());
  return matches;
}

std::string Replace(std::string text, const std::string& needle) {
  for (std::size_t at = 0; (at = text.find(needle, at)) != std::string::npos;) text.erase(at, needle.size());
  return text;
}

std::string Trim(const std::string& text) {
  const std::size_t first = text.find_first_not_of(' ');
  return first == std::string::npos ? "" : text.substr(first, text.find_last_not_of(' ') - first + 1);
}

// Which the pattern guarantees to be there.
std::string FirstMatch(const std::string& row, const Regex& regex) { return Matches(row, regex).at(0); }

}  // namespace

void PrintTo(const ReferenceReportRecord& record, std::ostream* out) {
  *out << testing::PrintToString(std::vector<std::string>{record.url, record.address, record.title});
}

std::vector<ReferenceReportRecord> ReferenceReadReport(const std::string& text) {
  static const Patterns patterns;
  std::vector<ReferenceReportRecord> records;
  for (const std::string& row : Matches(text, patterns.row)) {
    ReferenceReportRecord record;
    record.address = FirstMatch(row, patterns.address);
    record.url = FirstMatch(row, patterns.url_of_row);
    record.title = Trim(Replace(Replace(Replace(row, record.address), record.url), "\r\n"));
    records.push_back(record);
  }
  for (const std::string& line : Matches(text, patterns.padded_line)) {
    records.push_back({"", Trim(Replace(line, "\r\n")), ""});
  }
  if (!records.empty()) return records;
  for (const std::string& line : Matches(text, patterns.plain_line)) {
    records.push_back({"", Trim(Replace(line, "\r\n")), ""});
  }
  return records;
}

}  // namespace quenlar
