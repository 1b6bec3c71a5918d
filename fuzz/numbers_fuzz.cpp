// Numbers out of the registry: any text gives a value or is refused, and a decimal text gives its number.
#include <cmath>

#include "base/number.h"
#include "fuzz/target.h"

using namespace quenlar;

QUENLAR_FUZZ_TARGET(numbers) {
  const double value = LeadingNumber(bytes);
  FUZZ_CHECK(!std::isnan(value));
  const auto narrow = RoundToInt16(value);
  const auto wide = RoundToInt32(value);
  FUZZ_CHECK(!narrow || (wide && *wide == *narrow));
  if (wide) FUZZ_CHECK(std::abs(*wide - value) <= 0.5);
  if (wide) FUZZ_CHECK(RoundToInt32(LeadingNumber("  " + std::to_string(*wide) + "x")) == wide);
}
