// Asks a search service with the SearXNG interface: GET /search?q=...&format=json&language=...&pageno=...
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "platform/web_client.h"

namespace quenlar {

// A search ends here even where the service goes on and on.
inline constexpr int kMostSearchPages = 20;

// The address of result page `page`, counted from 1. `service` is an http or https URL, with or without "/search" at
// its end.
[[nodiscard]] std::string SearchUrl(std::string_view service, std::string_view keyword, std::string_view language,
                                    int page);

struct SearchReply {
  std::vector<std::string> urls = {};  // of the results, in their order
  std::string problem = {};  // a sentence without its end that says what is wrong and what to do; empty: nothing
  bool broken = false;       // there was no answer that could be read, so more results may be there
};

// What an answer of the service holds.
[[nodiscard]] SearchReply ReadSearchAnswer(std::string_view service, const WebAnswer& answer);

}  // namespace quenlar
