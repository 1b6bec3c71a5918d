// One run of a project from the command line, from its start to its end.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "cli/address_format.h"
#include "cli/workplace.h"
#include "state/settings_table.h"

namespace quenlar {

// What the command line asks for. An option that is not given is as stored. Options hold for the run alone.
struct ExtractOptions {
  std::string text;  // a keyword or an address
  AddressFormat format = AddressFormat::kLines;
  std::vector<SettingChange> overrides;
  std::vector<std::string> remove_words, extract_words;
  bool assume_online = false;
};

struct ExtractResult {
  int status = 0;      // exit status
  std::string reason;  // the message of the end of the run, or why there was none
  std::uint32_t addresses = 0, found_in_run = 0;
  std::int64_t scanned = 0;
  std::string data_file, report_file;
  double seconds = 0;
};

// Receives a function that stops the run in order. It may call that function inside any pump, and after the run.
using StopWatcher = std::function<void(std::function<void()> stop)>;

// Opens the project of `options.text`, records it in the list and runs it to its end. Addresses go to standard output
// as they are found, progress and messages to standard error. Pumps until the run has ended. A failure is in the result
// and has been reported to the user.
[[nodiscard]] ExtractResult RunExtract(Console& console, Workplace& place, const ExtractOptions& options,
                                       const StopWatcher& watch_stop);

// Returns {"reason", "addresses", "new", "scanned", "DataFile", "ReportFile", "seconds"} as one line.
[[nodiscard]] std::string SummaryText(const ExtractResult& result);

}  // namespace quenlar
