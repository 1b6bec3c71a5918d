// The filters of a run that lists addresses: those that are stored, and those of the command line in their place.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "base/status.h"
#include "platform/platform.h"
#include "settings/filter_words.h"
#include "state/settings.h"

namespace quenlar {

// Loads the stored settings into `settings`, to which `filter` refers, and the words of the filter file or the given
// ones into `filter`. `tell` takes messages for the user, also during the run. Fails when the settings cannot be read.
[[nodiscard]] Status LoadRunFilter(const Platform& platform, const Installation& installation,
                                   const std::vector<std::string>& remove_words,
                                   const std::vector<std::string>& extract_words, Settings& settings,
                                   FilterWords& filter, const std::function<void(const std::string& message)>& tell);

}  // namespace quenlar
