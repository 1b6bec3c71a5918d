// Reading a report back, against the row patterns run literally.
#include <stdexcept>

#include "fuzz/target.h"
#include "project/report_file.h"
#include "support/reference_report.h"

using namespace quenlar;

QUENLAR_FUZZ_TARGET(report) {
  const std::string text(bytes.substr(0, 4096));
  FoundAddresses found;
  ReadReport(text, found, [] { return true; });
  std::vector<ReferenceReportRecord> expected;
  try {
    expected = ReferenceReadReport(text);
  } catch (const std::runtime_error&) {
    return;  // the reference has given up
  }
  FUZZ_CHECK(found.Count() == expected.size());
  for (std::uint32_t i = 0; i < found.Count(); ++i) {
    FUZZ_CHECK(found.At(i).URL == expected[i].url);
    FUZZ_CHECK(found.At(i).Address == expected[i].address);
    FUZZ_CHECK(found.At(i).Title == expected[i].title);
  }
}
