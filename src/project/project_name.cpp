#include "project/project_name.h"

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <vector>

#include "base/ascii.h"
#include "state/get_host.h"

namespace quenlar {
namespace {

constexpr std::size_t kMaxNameBytes = 200;

bool IsUnusable(char c) {
  const auto byte = static_cast<unsigned char>(c);
  return byte < 32 || byte == 127 || std::string_view("\\/:*?\"<>|").find(c) != std::string_view::npos;
}

// Names that Windows takes for devices, whatever stands behind the first ".", and the name of the filter file, which
// lies in the same folder as the data files.
bool IsReserved(std::string_view name) {
  const std::string stem = Lower(TrimBlanks(name.substr(0, name.find('.'))));
  for (const char* device : {"con", "prn", "aux", "nul", "conin$", "conout$", "extractfilter"}) {
    if (stem == device) return true;
  }
  if (!stem.starts_with("com") && !stem.starts_with("lpt")) return false;
  const std::string number = stem.substr(3);
  if (number == "\xC2\xB9" || number == "\xC2\xB2" || number == "\xC2\xB3") return true;  // superscript 1, 2, 3
  return number.size() == 1 && number[0] >= '1' && number[0] <= '9';
}

// FNV-1a.
std::string HashText(std::string_view text) {
  std::uint64_t hash = 0xcbf29ce484222325u;
  for (const char c : text) hash = (hash ^ static_cast<unsigned char>(c)) * 0x100000001b3u;
  std::string digits;
  for (int shift = 60; shift >= 0; shift -= 4) digits += kHexDigits[(hash >> shift) & 15];
  return digits;
}

// At most `bytes` bytes, cut neither inside a UTF-8 character nor inside a percent code.
std::string_view CutWhole(std::string_view text, std::size_t bytes) {
  if (text.size() <= bytes) return text;
  while (bytes > 0 && (static_cast<unsigned char>(text[bytes]) & 0xC0) == 0x80) --bytes;
  for (std::size_t back = 1; back <= 2 && back <= bytes; ++back) {
    if (text[bytes - back] == '%') return text.substr(0, bytes - back);
  }
  return text.substr(0, bytes);
}

void NameFiles(Project& project, std::string_view name, const Installation& installation) {
  const std::string safe = SafeFileName(name);
  project.DataFile = installation.Data(safe + ".dat");
  project.ReportFile = installation.Report(safe + ".rpt");
}

void NameAddressProject(Project& project, std::string_view text, const Installation& installation) {
  std::string_view address = TrimBlanks(text);
  if (StartsWithIgnoreCase(address, "http://")) address.remove_prefix(7);
  // Every host gets "www." in front, also one such as "mail.x.de". The files of existing projects are named after the
  // address that results. Kept: ProjectName.AddressesGiveStartUrlAndFiles.
  project.StartURL = StartsWithIgnoreCase(address, "www.") ? "http://" : "http://www.";
  project.StartURL += address;
  const std::string host = GetHost(project.StartURL);
  constexpr std::size_t kPrefix = 11;  // "http://www."
  NameFiles(project, ReplaceAll(ReplaceAll(std::string_view(host).substr(kPrefix), "/", ""), ".", "_"), installation);
}

void NameKeywordProject(Project& project, std::string_view words, const std::string& language,
                        const Installation& installation) {
  project.Keyword = ReplaceAll(words, " ", "+");
  project.StartURL = SearchAddress(installation, language, project.Keyword, 0);
  NameFiles(project, ReplaceAll(project.Keyword, "+", "_") + "_" + language, installation);
}

bool IsLanguageCode(std::string_view code) {
  return std::any_of(std::begin(kLanguages), std::end(kLanguages),
                     [code](const Language& language) { return code == language.code; });
}

}  // namespace

bool IsKeywordText(std::string_view text) { return text.find('.') == std::string_view::npos; }

std::string SearchAddress(const Installation& installation, std::string_view language, std::string_view keyword,
                          int offset) {
  std::string address = installation.search_engine + "/search?hl=";
  address.append(language).append("&q=").append(keyword);
  return address + "&btnG=Google+Search&num=100&start=" + std::to_string(offset);
}

NamingOutcome NameProject(Project& project, std::string_view text, const Settings& settings,
                          const Installation& installation) {
  project.IsKeywordProject = IsKeywordText(text);
  if (!project.IsKeywordProject) {
    NameAddressProject(project, text, installation);
    return NamingOutcome::kNamed;
  }
  const std::vector<std::string_view> pieces = Split(text, "_");
  if (pieces.size() == 1) {
    const std::string language = LanguageCode(settings.SearchLanguage);
    if (language.empty()) return NamingOutcome::kUnknownLanguage;
    NameKeywordProject(project, text, language, installation);
    return NamingOutcome::kNamed;
  }
  // Only the second piece counts: "new_york_en" has the suffix "york".
  const std::string language = Lower(pieces[1]);
  if (!IsLanguageCode(language)) return NamingOutcome::kUnknownSuffix;
  NameKeywordProject(project, pieces[0], language, installation);
  // A Japanese keyword stores "es". Nothing reads the value, but `analyze` shows it.
  // Kept: ProjectName.JapaneseSuffixStoresSpanishAsTheProjectLanguage.
  project.ProjectLanguage = language == "ja" ? "es" : language;
  return NamingOutcome::kNamed;
}

std::string SafeFileName(std::string_view name) {
  std::string safe;
  const bool reserved = IsReserved(name);
  for (std::size_t i = 0; i < name.size(); ++i) {
    const bool ends_badly = i + 1 == name.size() && (name[i] == '.' || name[i] == ' ');
    if (IsUnusable(name[i]) || ends_badly || (reserved && i == 0)) {
      safe += PercentCode(name[i]);
    } else {
      safe += name[i];
    }
  }
  if (safe.size() <= kMaxNameBytes) return safe;
  const std::string hash = HashText(name);
  return std::string(CutWhole(safe, kMaxNameBytes - hash.size() - 1)) + "-" + hash;
}

}  // namespace quenlar
