#include "cli/sighting_format.h"

#include <gtest/gtest.h>

namespace quenlar {
namespace {

Sighting Anna() {
  Sighting sighting;
  sighting.address = "anna@example.org";
  sighting.page = "https://example.org/";
  sighting.title = "Say \"hi\"";
  sighting.place = "mailto";
  sighting.first_seen = 0;
  return sighting;
}

TEST(SightingFormat, HasThreeForms) {
  EXPECT_EQ(FormatSighting(Anna(), AddressFormat::kLines), "anna@example.org\n");
  EXPECT_EQ(FormatSighting(Anna(), AddressFormat::kCsv),
            "\"anna@example.org\",\"https://example.org/\",\"Say \"\"hi\"\"\",\"mailto\"\n");
  EXPECT_EQ(FormatSighting(Anna(), AddressFormat::kJsonl),
            "{\"address\":\"anna@example.org\",\"page\":\"https://example.org/\",\"title\":\"Say \\\"hi\\\"\","
            "\"place\":\"mailto\",\"seen\":\"1970-01-01T00:00:00Z\"}\n");
}

TEST(SightingFormat, MarksWhatIsGone) {
  Sighting gone = Anna();
  gone.gone = true;
  EXPECT_EQ(FormatSighting(gone, AddressFormat::kLines), "anna@example.org\tgone\n");
  EXPECT_TRUE(FormatSighting(gone, AddressFormat::kCsv).ends_with(",\"mailto\",\"gone\"\n"));
  EXPECT_TRUE(FormatSighting(gone, AddressFormat::kJsonl).ends_with(",\"gone\":true}\n"));
}

}  // namespace
}  // namespace quenlar
