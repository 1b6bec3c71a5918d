// One harvest from the command line, from its start to its end.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "cli/address_format.h"
#include "cli/invocation.h"

namespace quenlar {

struct HarvestOptions {
  std::vector<std::string> inputs;  // as given
  std::string name;                 // of the collection that is filled as well; empty: none
  AddressFormat format = AddressFormat::kLines;
  std::size_t jobs = 0;  // 0: as many as there are cores
  bool decode_protected = false, obey_robots = true, progress = false;
  std::vector<std::string> remove_words, extract_words;
};

// Prints the addresses of the inputs. Returns the exit status. Pumps.
[[nodiscard]] int RunHarvest(Invocation& invocation, const HarvestOptions& options);

}  // namespace quenlar
