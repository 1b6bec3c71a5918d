// Takes addresses out of everything that the program has stored.
#pragma once

#include <cstddef>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "base/status.h"
#include "page/unwanted_addresses.h"
#include "platform/files.h"
#include "state/settings.h"

namespace quenlar {

struct EraseOutcome {
  std::set<std::string> addresses;         // those that were found and taken out, in lower case
  std::size_t collections = 0, files = 0;  // from which something was taken out
  std::vector<std::string> problems;       // what could not be done, one sentence each; the rest has been done
};

// What else is written in the program folder while addresses are taken out.
enum class OtherWriters {
  kNone,      // the caller holds the folder
  kPossible,  // another program holds it: the files of projects stay as they are, which is a problem
};

// Takes every address for which `keeps` is false out of all collections (see EraseAddresses), reports, data files and
// the older copies that were kept of them. In text files the line of such an address goes; where a line belongs to
// something else and only names it, as in a title, its characters go. A collection that another program uses, or that
// cannot be changed, is a problem, and so is a damaged one that was kept aside. Does not pump.
[[nodiscard]] EraseOutcome EraseEverywhere(Files& files, const Installation& installation, const AddressTest& keeps,
                                           OtherWriters others);

// A text without such addresses, as said above; they are added to `erased`.
[[nodiscard]] std::string WithoutAddresses(std::string_view text, const AddressTest& keeps,
                                           std::set<std::string>& erased);

}  // namespace quenlar
