#include "cli/address_format.h"

#include "base/ascii.h"
#include "cli/json_text.h"

namespace quenlar {

std::string CsvField(std::string_view text) {
  std::string field = "\"";
  if (!text.empty() && std::string_view("=+-@\t\r").find(text.front()) != std::string_view::npos) field += '\'';
  for (const char c : text) {
    if (c == '"') field += '"';
    field += c == '\n' || c == '\r' || c == '\0' ? ' ' : c;
  }
  return field + "\"";
}

std::string FormatAddress(const FoundAddress& record, AddressFormat format) {
  switch (format) {
    case AddressFormat::kLines:
      return std::string(record.Address) + "\n";
    case AddressFormat::kCsv:
      return CsvField(record.Address) + "," + CsvField(record.URL) + "," + CsvField(record.Title) + "," +
             (record.TagOnly ? "\"1\"" : "\"0\"") + "\n";
    case AddressFormat::kJsonl:
      break;
  }
  return JsonLine(FoundAddressJson(record));
}

AddressFormat FormatOf(std::string_view word) {
  return word == "csv" ? AddressFormat::kCsv : word == "jsonl" ? AddressFormat::kJsonl : AddressFormat::kLines;
}

}  // namespace quenlar
