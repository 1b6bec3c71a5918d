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

// "Brenvy Quenlar Pro, " and the address of the product's web site; it heads the data file, the report and the
// filter file.
[[nodiscard]] std::string HeaderLine();

// Entries that a writer can count with a 16-bit signed index.
inline constexpr std::uint32_t kMaxWritten = 32768;
inline constexpr const char* kOverflowText = "Overflow !";

// Begins the data file at `path`: for each queue the links in flight, then those from Next() on, as they are counted
// now. The queues may change until the last record is written; what is no longer there is left out. kLimit with
// kOverflowText, and nothing touched, when a queue holds more than kMaxWritten entries.
[[nodiscard]] Result<std::unique_ptr<RecordWriter>> StartDataFile(Files& files, const CodePage& code_page,
                                                                  const std::string& path, const LinkQueues& queues);

// The whole file at once. Pumps before each address.
Status WriteDataFile(Files& files, const CodePage& code_page, EventLoop& loop, const std::string& path,
                     const LinkQueues& queues, Pump::Pace pace = Pump::Pace::kWhenTimeHasPassed);

enum class DataFileContents {
  kLoaded,
  kMissing,
  kOtherHeader,  // also a file of which nothing can be read; nothing is loaded
  kCutShort,     // the file could not be read to its end, or holds a line longer than any link; the rest is loaded
};

// Adds the file's links to the (empty) queues; `added` is called after each line, and may pump. Stops when it returns
// false. Lines end in CR LF or LF.
[[nodiscard]] DataFileContents ReadDataFile(const Files& files, const CodePage& code_page, const std::string& path,
                                            LinkQueues& queues, const std::function<bool()>& added);

}  // namespace quenlar
