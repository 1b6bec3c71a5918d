// One harvest from the command line, from its start to its end.
#pragma once

#include <cstddef>
#include <cstdint>
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

// How a harvest has ended.
struct HarvestResult {
  int status = 0;               // to exit with
  std::string reason;           // "finished", "stopped", or "failed": it could not be made, or not go on
  std::uint64_t addresses = 0;  // printed
  std::uint64_t pages = 0, filtered = 0, suppressed = 0;
  std::uint64_t damaged = 0;  // records that were damaged, and stretches between records
  std::uint64_t other = 0;    // inputs that are neither archives nor pages, though named
  std::uint64_t unread = 0;   // inputs and folders that the system could not read, or not to their end
};

// Prints the addresses of the inputs. Pumps.
[[nodiscard]] HarvestResult RunHarvest(Invocation& invocation, const HarvestOptions& options);

// What --summary writes: one JSON object.
[[nodiscard]] std::string SummaryText(const HarvestResult& result);

}  // namespace quenlar
