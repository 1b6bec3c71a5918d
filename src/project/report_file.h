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
#include "project/data_file.h"
#include "project/record_writer.h"
#include "state/address_filter.h"
#include "state/found_addresses.h"

namespace quenlar {

// Begins to replace the report at `path`, over the records that `found` holds now. The table may grow until the last
// record is written, but it must not be cleared. `all_information` is export mode 1: pages and titles too.
//
// The heading and the list of addresses are written at once. The writer's records are the rows of the table, the list
// of URLs and the list of home pages. kLimit with kOverflowText when the table holds more than `most` records; nothing
// has been touched then. Those of classic projects take kMaxWritten.
[[nodiscard]] Result<std::unique_ptr<RecordWriter>> StartReport(Files& files, const CodePage& code_page,
                                                                const std::string& path, const FoundAddresses& found,
                                                                bool all_information, std::uint32_t most = kMaxWritten);

// Writes the whole report. Pumps before each record of the table, the list of URLs and the list of home pages.
Status WriteReport(Files& files, const CodePage& code_page, EventLoop& loop, const std::string& path,
                   const FoundAddresses& found, bool all_information, Pump::Pace pace = Pump::Pace::kWhenTimeHasPassed);

// Reads the text of a report back, record by record: first the table rows and the padded address lines, and when there
// is neither, the plain address lines. Finds exactly what the patterns of the format find (docs/data-files.md), in
// linear time.
//
//   while (reader.Advance()) { pump(); reader.Take(found); }
//
// Code inside the pump may take all that is left (FinishNow). The loop then ends.
class ReportReader {
 public:
  // `text` (UTF-8) must stay valid and unchanged while the reader lives. Records whose address `filter` does not keep
  // are passed over.
  explicit ReportReader(std::string_view text, AddressFilter* filter = nullptr) : text_(text), filter_(filter) {}

  // Finds the next record. Returns false when there is none left.
  bool Advance();
  // Appends the record that Advance has found. A second call does nothing.
  void Take(FoundAddresses& found);
  // Appends all records that are left.
  void FinishNow(FoundAddresses& found);
  // Whether a record has been passed over.
  [[nodiscard]] bool passed_over() const { return passed_over_; }

 private:
  enum class Pass { kTableRows, kPaddedLines, kPlainLines, kDone };
  struct Match {
    std::size_t from, address_end, url, end;
  };

  bool FindInPass();
  void NextPass();
  void AddRow(FoundAddresses& found) const;
  [[nodiscard]] bool IsKept() const;
  [[nodiscard]] bool RowAt(Match& match);
  [[nodiscard]] bool PaddedLineAt(Match& match) const;
  [[nodiscard]] bool PlainLineAt(Match& match) const;

  std::string_view text_;
  Pass pass_ = Pass::kTableRows;
  std::size_t at_ = 0;  // where the pass goes on
  bool any_ = false;    // a pass has found something
  bool held_ = false;   // match_ has been found and not yet taken
  AddressFilter* filter_;
  bool passed_over_ = false;
  Match match_{};
};

// Appends all records of a report to the table. `pump` is called for each record, before it is appended. Reading stops
// when it returns false.
void ReadReport(std::string_view text, FoundAddresses& found, const std::function<bool()>& pump);

}  // namespace quenlar
