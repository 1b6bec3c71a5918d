// Takes addresses out of a collection so that its files hold no trace of them.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "base/status.h"
#include "page/unwanted_addresses.h"

namespace quenlar {

struct ErasedFromCollection {
  std::vector<std::string> addresses;  // in lower case, without those that only a text named
  std::size_t texts = 0;               // titles, links and their like that named one and were cleared
};

// Deletes every address for which `keeps` is false, with its sightings, and clears the texts that name such an address:
// titles, addresses of pages, rules of robots.txt (they are fetched again), starts. A page with a cleared address
// is not visited any more. Where something was deleted the file is written anew and its log is emptied, which takes as
// much time and space as the file is large; otherwise nothing changes.
//
// `path` names an existing file. kBusy where another program has it open, a run above all, kLimit where a newer program
// has made it, kFormat where it is damaged or not a collection. Does not pump; may wait some seconds for the other
// program. After a failure the addresses may be gone but not their traces in the file; the next call clears those too.
[[nodiscard]] Result<ErasedFromCollection> EraseAddresses(const std::string& path, const AddressTest& keeps);

}  // namespace quenlar
