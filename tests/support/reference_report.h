// The report's row patterns, run literally by a backtracking engine: what the linear reader is compared with.
#pragma once

#include <iosfwd>
#include <string>
#include <vector>

namespace quenlar {

struct ReferenceReportRecord {
  std::string url, address, title;
  bool operator==(const ReferenceReportRecord&) const = default;
};

// How a failed test shows a record.
void PrintTo(const ReferenceReportRecord& record, std::ostream* out);

// Throws std::runtime_error where the engine gives up; not for long texts.
[[nodiscard]] std::vector<ReferenceReportRecord> ReferenceReadReport(const std::string& text);

}  // namespace quenlar
