// The report: the found addresses as a readable text, and its reader.
#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <string>
#include <string_view>

#include "base/status.h"
#include "platform/code_page.h"
#include "platform/event_loop.h"
#include "platform/files.h"
#include "platform/pump.h"
#include "project/record_writer.h"
#include "state/found_addresses.h"

namespace quenlar {

// Begins the report at `path`, over the records that `found` holds now; it may grow until the last record is written,
// but must not be cleared. Advance and Write go through the rows of the table, the URL list and the home pages; what
// stands before them is written at once. `all_information` is export mode 1. kLimit with kOverflowText, and nothing
// touched, when the table holds more than kMaxWritten records.
[[nodiscard]] Result<std::unique_ptr<RecordWriter>> StartReport(Files& files, const CodePage& code_page,
                                                                const std::string& path, const FoundAddresses& found,
                                                                bool all_information);

// The whole report at once. Pumps before each record of the table, the URL and the home page lists.
Status WriteReport(Files& files, const CodePage& code_page, EventLoop& loop, const std::string& path,
                   const FoundAddresses& found, bool all_information, Pump::Pace pace = Pump::Pace::kWhenTimeHasPassed);

// Reads a report's text back, record by record: table rows and padded address lines, or, where there is neither,
// plain address lines. Finds exactly what the patterns of the format find (docs/data-files.md), in linear time.
//
//   while (reader.Advance()) { pump(); reader.Take(found); }
//
// What the pump runs may take all that is left (FinishNow); the loop then just ends.
class ReportReader {
 public:
  // `text` must stay as it is while the reader lives.
  explicit ReportReader(std::string_view text) : text_(text) {}

  // Looks for the next record; false when there is none left.
  bool Advance();
  // Appends the record that Advance has found, once.
  void Take(FoundAddresses& found);
  void FinishNow(FoundAddresses& found);

 private:
  enum class Pass { kTableRows, kPaddedLines, kPlainLines, kDone };
  struct Match {
    std::size_t from, address_end, url, end;
  };

  bool FindInPass();
  void NextPass();
  void AddRow(FoundAddresses& found) const;
  [[nodiscard]] bool RowAt(Match& match);
  [[nodiscard]] bool PaddedLineAt(Match& match) const;
  [[nodiscard]] bool PlainLineAt(Match& match) const;

  std::string_view text_;
  Pass pass_ = Pass::kTableRows;
  std::size_t at_ = 0;  // where the pass goes on
  bool any_ = false;    // a pass has found something
  bool held_ = false;   // match_ has been found and not yet taken
  Match match_{};
};

// Appends what a report's text holds to the table. `pump` is called once a match, before its record is appended;
// reading stops when it returns false.
void ReadReport(std::string_view text, FoundAddresses& found, const std::function<bool()>& pump);

}  // namespace quenlar
