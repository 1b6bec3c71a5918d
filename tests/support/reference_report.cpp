#include "support/reference_report.h"

#include <ostream>

#include <boost/regex.hpp>
#include <gtest/gtest.h>

namespace quenlar {
namespace {

using Regex = boost::basic_regex<char, boost::cpp_regex_traits<char>>;
using Iterator = boost::regex_iterator<std::string::const_iterator, char, boost::cpp_regex_traits<char>>;

const char* const kAddress = "[a-z0-9._%+-]+@[a-z0-9.-]+\\.[a-z]{2,4}";
// The hyphen stands between a class and a character, where it is no range.
const char* const kUrl = "(http|https|ftp)://([\\w-]+\\.)+[\\w-]+(/[\\w\\-./?%&=]*)?";
const char* const kUrlOfRow = "(http|https|ftp)://([\\w-]+\\.)+[\\w-]+(/[\\w\\-./?%&=;~]*)?";
const char* const kTitle = "((\\s)*?|(\\s)*([\\s\\S]*?))";
const char* const kLineEnd = "\\r\\n";

Regex Compile(const std::string& pattern) {
  return Regex(pattern, boost::regex_constants::perl | boost::regex_constants::icase);
}

std::vector<std::string> Matches(const std::string& text, const std::string& pattern) {
  const Regex regex = Compile(pattern);
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
std::string FirstMatch(const std::string& row, const char* pattern) { return Matches(row, pattern).at(0); }

}  // namespace

void PrintTo(const ReferenceReportRecord& record, std::ostream* out) {
  *out << testing::PrintToString(std::vector<std::string>{record.url, record.address, record.title});
}

std::vector<ReferenceReportRecord> ReferenceReadReport(const std::string& text) {
  const std::string address = kAddress;
  std::vector<ReferenceReportRecord> records;
  for (const std::string& row : Matches(text, address + "(\\s)+" + kUrl + kTitle + kLineEnd)) {
    ReferenceReportRecord record;
    record.address = FirstMatch(row, kAddress);
    record.url = FirstMatch(row, kUrlOfRow);
    record.title = Trim(Replace(Replace(Replace(row, record.address), record.url), "\r\n"));
    records.push_back(record);
  }
  for (const std::string& line : Matches(text, address + "(\\s){7,}" + kLineEnd)) {
    records.push_back({"", Trim(Replace(line, "\r\n")), ""});
  }
  if (!records.empty()) return records;
  for (const std::string& line : Matches(text, address + kLineEnd)) {
    records.push_back({"", Trim(Replace(line, "\r\n")), ""});
  }
  return records;
}

}  // namespace quenlar
