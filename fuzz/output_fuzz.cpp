// What is printed: csv and JSON lines are read back, by readers that share no code with the writers, as the record they
// were made of; nothing in csv is a formula, and nothing that is shown steers a terminal.
#include <array>
#include <string>
#include <vector>

#include "cli/address_format.h"
#include "cli/terminal_text.h"
#include "fuzz/target.h"

using namespace quenlar;

namespace {

// RFC 4180 with every field quoted: the fields of the one record, empty when it is none.
std::vector<std::string> ReadCsv(std::string_view line) {
  std::vector<std::string> fields;
  std::size_t at = 0;
  for (;;) {
    if (at >= line.size() || line[at++] != '"') return {};
    std::string field;
    for (;; ++at) {
      if (at >= line.size()) return {};
      if (line[at] != '"') {
        field += line[at];
      } else if (at + 1 < line.size() && line[at + 1] == '"') {
        field += line[at++];
      } else {
        break;
      }
    }
    fields.push_back(field);
    ++at;
    if (at + 1 == line.size() && line[at] == '\n') return fields;
    if (at >= line.size() || line[at++] != ',') return {};
  }
}

std::string AsCsvHolds(std::string_view text) {
  std::string held(text);
  const bool formula = !text.empty() && (text[0] == '=' || text[0] == '+' || text[0] == '-' || text[0] == '@' ||
                                         text[0] == '\t' || text[0] == '\r');
  for (char& c : held) {
    if (c == '\n' || c == '\r' || c == '\0') c = ' ';
  }
  return formula ? "'" + held : held;
}

int Hex(char c) { return c >= '0' && c <= '9' ? c - '0' : c >= 'a' && c <= 'f' ? c - 'a' + 10 : -1; }

// One JSON text at `at`, which then stands behind it. Escapes above U+FFFF come as two.
bool ReadJsonText(std::string_view line, std::size_t& at, std::string& text) {
  if (at >= line.size() || line[at++] != '"') return false;
  while (at < line.size() && line[at] != '"') {
    const char c = line[at++];
    if (static_cast<unsigned char>(c) < 0x20 || c == 0x7F) return false;
    if (c != '\\') {
      text += c;
      continue;
    }
    if (at >= line.size()) return false;
    constexpr std::string_view kLetters = "\"\\/bfnrt", kMeanings = "\"\\/\b\f\n\r\t";
    const char letter = line[at++];
    if (const std::size_t known = kLetters.find(letter); known != kLetters.npos) {
      text += kMeanings[known];
      continue;
    }
    if (letter != 'u' || at + 4 > line.size()) return false;
    int code = 0;
    for (int i = 0; i < 4; ++i) {
      const int digit = Hex(line[at++]);
      if (digit < 0) return false;
      code = code * 16 + digit;
    }
    if (code >= 0xD800 && code < 0xE000) return false;  // nothing that UTF-8 holds needs to be written so
    if (code < 0x80) {
      text += static_cast<char>(code);
    } else if (code < 0x800) {
      text += {static_cast<char>(0xC0 | (code >> 6)), static_cast<char>(0x80 | (code & 0x3F))};
    } else {
      text += {static_cast<char>(0xE0 | (code >> 12)), static_cast<char>(0x80 | ((code >> 6) & 0x3F)),
               static_cast<char>(0x80 | (code & 0x3F))};
    }
  }
  return at++ < line.size();
}

bool Skip(std::string_view line, std::size_t& at, std::string_view expected) {
  if (line.substr(at, expected.size()) != expected) return false;
  at += expected.size();
  return true;
}

void CheckJsonl(const FoundAddress& record) {
  const std::string line = FormatAddress(record, AddressFormat::kJsonl);
  FUZZ_CHECK(IsUtf8(line));
  for (const char* breaker : {"\xC2\x85", "\xE2\x80\xA8", "\xE2\x80\xA9"}) FUZZ_CHECK(line.find(breaker) == line.npos);
  std::size_t at = 0;
  std::array<std::string, 3> texts;
  FUZZ_CHECK(Skip(line, at, "{\"URL\":") && ReadJsonText(line, at, texts[0]));
  FUZZ_CHECK(Skip(line, at, ",\"Address\":") && ReadJsonText(line, at, texts[1]));
  FUZZ_CHECK(Skip(line, at, ",\"Title\":") && ReadJsonText(line, at, texts[2]));
  FUZZ_CHECK(line.substr(at) == (record.TagOnly ? ",\"TagOnly\":true}\n" : ",\"TagOnly\":false}\n"));
  const std::array<std::string_view, 3> expected = {record.URL, record.Address, record.Title};
  for (std::size_t i = 0; i < 3; ++i) {
    if (IsUtf8(expected[i])) FUZZ_CHECK(texts[i] == expected[i]);
  }
}

void CheckCsv(const FoundAddress& record) {
  const std::vector<std::string> fields = ReadCsv(FormatAddress(record, AddressFormat::kCsv));
  FUZZ_CHECK(fields.size() == 4);
  FUZZ_CHECK(fields[0] == AsCsvHolds(record.Address));
  FUZZ_CHECK(fields[1] == AsCsvHolds(record.URL));
  FUZZ_CHECK(fields[2] == AsCsvHolds(record.Title));
  FUZZ_CHECK(fields[3] == (record.TagOnly ? "1" : "0"));
  for (const std::string& field : fields) {
    FUZZ_CHECK(field.empty() || std::string_view("=+-@\t\r").find(field[0]) == std::string_view::npos);
    FUZZ_CHECK(field.find_first_of(std::string_view("\n\r\0", 3)) == std::string::npos);
  }
}

}  // namespace

QUENLAR_FUZZ_TARGET(output) {
  fuzz::Feed feed(bytes);
  FoundAddress record;
  record.TagOnly = feed.Byte() % 2 == 1;
  record.Address = feed.Text();
  record.URL = feed.Text();
  record.Title = feed.Rest();  // the only one that may hold NULs
  CheckCsv(record);
  CheckJsonl(record);
  const std::string shown = ForTerminal(bytes);
  FUZZ_CHECK(IsUtf8(shown));
  for (std::size_t i = 0; i < shown.size(); ++i) {
    const auto byte = static_cast<unsigned char>(shown[i]);
    FUZZ_CHECK((byte >= 0x20 || byte == '\t') && byte != 0x7F);
    if (byte == 0xC2) FUZZ_CHECK(static_cast<unsigned char>(shown[i + 1]) >= 0xA0);
  }
  FUZZ_CHECK(ForTerminal(shown) == shown);
}
