// Why an address is (or is not) listed, and why a page was (or was not) visited: facts, and sentences for a person.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/status.h"
#include "collection/collection_reader.h"
#include "platform/idna.h"
#include "settings/suppression_list.h"

namespace quenlar {

// Whether a question is about a mail address; any other text is the address of a page.
[[nodiscard]] bool AsksForAddress(std::string_view what);

struct WhyAnswer {
  bool definite = false;  // the collection knows something of it; otherwise there is one sentence and no facts
  std::vector<std::string> sentences = {};
  std::string address = {};             // in the spelling of the collection; empty where a page was asked for
  std::string page = {};                // its URL
  std::string state = {};               // "listed", "gone", "suppressed", or one of those of a page
  std::string reason = {}, rule = {};   // empty where there is none
  std::optional<PageFacts> facts = {};  // of a page that the collection holds
};

// `what` is a mail address, or the address of a page with or without a scheme. The suppression list counts for
// addresses alone. The list of the places of an address names `most_places` of them.
[[nodiscard]] Result<WhyAnswer> Why(CollectionReader& reader, const SuppressionList& suppression, const Idna& idna,
                                    const std::string& what, std::size_t most_places);

}  // namespace quenlar
