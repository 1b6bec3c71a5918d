// A collection as one web page that stands alone: its figures, charts, runs, and a list of addresses to search and
// sort. The page asks nothing of the network, and nothing that a visited page has written runs in it.
#pragma once

#include <functional>
#include <string_view>

#include "base/status.h"
#include "collection/collection_reader.h"

namespace quenlar {

// Takes the next piece of a text; false: no more is wanted.
using TextSink = std::function<bool(std::string_view piece)>;

struct OverviewChoice {
  SightingChoice sightings = {};
  bool with_gone = false;  // also the addresses that do not stand anywhere any more
};

// Writes the page piece by piece. In memory are the numbers of the pages that it names, and the sightings of one
// address. `name` is shown as the collection's. ASCII alone. A sink that wants no more is not a failure.
[[nodiscard]] Status WriteOverview(CollectionReader& reader, std::string_view name, const OverviewChoice& choice,
                                   const TextSink& sink);

}  // namespace quenlar
