// How a collection's addresses are printed.
#pragma once

#include <string>

#include "cli/address_format.h"
#include "collection/collection_reader.h"

namespace quenlar {

// One line with its line feed: the address; "address","page","title","place";
// {"address","page","title","place","seen"}. A sighting that is gone is marked: by a tab and the word, by a fifth
// field, by a member "gone".
[[nodiscard]] std::string FormatSighting(const Sighting& sighting, AddressFormat format);

}  // namespace quenlar
