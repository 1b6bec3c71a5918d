// Titles: what the pattern finds by itself is found, and a cleaned text is that of the steps done one after the other.
#include <stdexcept>

#include "fuzz/target.h"
#include "support/reference_page.h"
#include "web/tag_text.h"

using namespace quenlar;

QUENLAR_FUZZ_TARGET(title) {
  static const ReferenceAnalysis reference;
  const std::string page(bytes.substr(0, 8192));
  FUZZ_CHECK(CleanText(page) == ReferenceClean(page));
  std::string expected;
  try {
    expected = reference.Title(page);
  } catch (const std::runtime_error&) {
    return;  // the reference has given up
  }
  FUZZ_CHECK(GetPageTitle(page) == expected);
}
