#include "cli/sighting_format.h"

#include "cli/json_text.h"
#include "engine/time_text.h"

namespace quenlar {

namespace {

// Standard input is no formula.
std::string PageField(std::string_view page) { return page == "-" ? "\"-\"" : CsvField(page); }

}  // namespace

std::string FormatSighting(const Sighting& sighting, AddressFormat format) {
  switch (format) {
    case AddressFormat::kLines:
      break;
    case AddressFormat::kCsv:
      return CsvField(sighting.address) + "," + PageField(sighting.page) + "," + CsvField(sighting.title) + "," +
             CsvField(sighting.place) + (sighting.gone ? ",\"gone\"\n" : "\n");
    case AddressFormat::kJsonl: {
      Json line = {{"address", std::string(sighting.address)},
                   {"page", std::string(sighting.page)},
                   {"title", std::string(sighting.title)},
                   {"place", std::string(sighting.place)},
                   {"seen", TimeText(sighting.first_seen)}};
      if (sighting.gone) line["gone"] = true;
      return JsonLine(line);
    }
  }
  return std::string(sighting.address) + (sighting.gone ? "\tgone\n" : "\n");
}

}  // namespace quenlar
