// Where collections lie, what they are called, and what a run of one needs beside the network.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "base/status.h"
#include "platform/files.h"
#include "state/settings.h"

namespace quenlar {

// The name of the collection that a start makes: as the files of a project of this text are called, "example_org" for
// "https://www.example.org/", "red_cars_en" for "red cars" in English. `language` is a two-letter code.
[[nodiscard]] std::string CollectionName(std::string_view start, std::string_view language,
                                         const Installation& installation);

// The database of a collection. The name may be any text that a person typed; the path stays in the folder `data`.
[[nodiscard]] std::string CollectionPath(const Installation& installation, std::string_view name);

// The names of all collections, in no order. A missing folder has none.
[[nodiscard]] Result<std::vector<std::string>> CollectionNames(const Files& files, const Installation& installation);

}  // namespace quenlar
