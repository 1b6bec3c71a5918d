// The settings that the program reads while it works, and what is fixed when it is built or started.
#pragma once

#include <cstdint>
#include <iterator>
#include <string>
#include <string_view>

namespace quenlar {

// What people choose among, each choice in one list. The setting holds the index of an entry.
struct Language {
  const char* code;  // in search addresses, in the names of projects, on the command line
  const char* name;  // in the options dialog
};
inline constexpr Language kLanguages[] = {{"en", "English"}, {"fr", "French"},  {"de", "German"},
                                          {"it", "Italian"}, {"es", "Spanish"}, {"ja", "Japanese"}};
inline constexpr int kSaveIntervals[] = {30, 50, 100};  // new addresses from one save of the project to the next
inline constexpr std::int32_t kHighestStopNumber = 99999;

// What is stored of them, and how, says state/settings_table.h. The values here are those of the first start.
struct Settings {
  std::int16_t SearchLanguage = 0;               // an index of kLanguages
  std::int16_t SaveInterval = 0;                 // an index of kSaveIntervals
  std::int16_t CorrelationMode = 1;              // 1: a URL project follows links to other sites too
  std::int32_t StopNumber = kHighestStopNumber;  // end of a run after so many new addresses
  std::int16_t ExportMode = 0;                   // 0: addresses alone; otherwise all information
  std::int16_t RemoveFilterOn = 0;               // exactly 1 is on
  std::int16_t ExtractFilterOn = 0;              // exactly 1 is on
  std::int16_t NeverUpgradeFlag = 0;             // nonzero: no upgrade check

  // Meaningful values for what a registry may hold: StopNumber below 1 counts as the highest one, a SaveInterval
  // outside its list as 0.
  [[nodiscard]] std::int32_t EffectiveStopNumber() const { return StopNumber < 1 ? kHighestStopNumber : StopNumber; }
  [[nodiscard]] int SaveEvery() const {
    const bool known = SaveInterval >= 0 && SaveInterval < std::ssize(kSaveIntervals);
    return kSaveIntervals[known ? SaveInterval : 0];
  }
};

// The two-letter code of a language index, or "" for an unknown index.
[[nodiscard]] constexpr const char* LanguageCode(int index) {
  return index >= 0 && index < std::ssize(kLanguages) ? kLanguages[index].code : "";
}

// The registry key that holds the stored settings and the project list.
inline constexpr const char* kProjectKey = "Software\\Quenlar\\Project";

// Where this copy of the program lives and searches: fixed when it is started, not stored.
struct Installation {
  std::string search_engine = "http://www.google.com";  // scheme, host and port of the search engine
  std::string program_folder;                           // ends in a separator in a drive's root alone
  char separator = '/';                                 // between folders in paths: "\\" on Windows

  // A file or folder in the program folder.
  [[nodiscard]] std::string Below(std::string_view name) const { return Joined(program_folder, name); }
  // The folder of the data files and the filter file, and a file in it.
  [[nodiscard]] std::string Data() const { return Below("data"); }
  [[nodiscard]] std::string Data(std::string_view file) const { return Joined(Data(), file); }
  // The folder of the reports, and a file in it.
  [[nodiscard]] std::string Report() const { return Below("report"); }
  [[nodiscard]] std::string Report(std::string_view file) const { return Joined(Report(), file); }

 private:
  [[nodiscard]] std::string Joined(std::string path, std::string_view name) const {
    return (path += separator).append(name);
  }
};

inline constexpr const char* kSearchEngineDomain = "google.";        // results on it are not crawled
inline constexpr const char* kEncyclopediaDomain = "wikipedia.org";  // links to it are not followed
inline constexpr const char* kHomePage = "http://www.quenlar.example";
inline constexpr const char* kUpgradePage = "http://www.quenlar.example/upgrade.txt";
inline constexpr const char* kInstallerPage = "http://www.quenlar.example/QuenlarSetup.exe";

}  // namespace quenlar
