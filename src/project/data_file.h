// The data file: the links that a project still has to visit.
//
//   Brenvy Quenlar Pro, http://www.quenlar.example
//   [A]
//   http://host/page        one address a line, CR LF, ANSI code page
//   [B] [C] [D] [E] [M] [F] [G] [H] [I] [J]   in this order, each on a line of its own
#pragma once

#include <functional>
#include <memory>
#include <string>

#include "base/status.h"
#include "platform/code_page.h"
#include "platform/event_loop.h"
#include "platform/files.h"
#include "platform/pump.h"
#include "project/record_writer.h"
#include "state/link_queue.h"

namespace quenlar {

// Returns the first line of the data file, the report and the filter file: "Brenvy Quenlar Pro, " and the address of
// the product's web site.
[[nodiscard]] std::string HeaderLine();

// The most entries of a queue or table that a file can hold: a writer counts them with a signed 16-bit index.
inline constexpr std::uint32_t kMaxWritten = 32768;
inline constexpr const char* kOverflowText = "Overflow !";

// Begins to replace the data file at `path`. For each queue it will write the links in flight and then those that wait,
// as many as there are now. The queues may change until the last record is written; links that are gone by then are
// left out. kLimit with kOverflowText when a queue holds more than kMaxWritten entries; nothing has been touched then.
[[nodiscard]] Result<std::unique_ptr<RecordWriter>> StartDataFile(Files& files, const CodePage& code_page,
                                                                  const std::string& path, const LinkQueues& queues);

// Writes the whole file. Pumps before each address.
Status WriteDataFile(Files& files, const CodePage& code_page, EventLoop& loop, const std::string& path,
                     const LinkQueues& queues, Pump::Pace pace = Pump::Pace::kWhenTimeHasPassed);

// What ReadDataFile has found.
enum class DataFileContents {
  kLoaded,
  kMissing,
  kOtherHeader,  // the first line is another one, or nothing can be read; nothing is loaded
  kCutShort,     // the file could not be read to its end, or a line is longer than any link; all other lines are loaded
};

// Adds the links of the file at `path` to the queues, which must be empty. Lines may end in CR LF or LF. `added` is
// called after each line and may pump; reading stops when it returns false. docs/data-files.md has the format.
[[nodiscard]] DataFileContents ReadDataFile(const Files& files, const CodePage& code_page, const std::string& path,
                                            LinkQueues& queues, const std::function<bool()>& added);

}  // namespace quenlar
