// Reads one page: its title, its links, and the addresses on it with the places where they stand.
#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "page/address_finder.h"
#include "page/page_links.h"
#include "page/robots_words.h"
#include "page/url.h"
#include "platform/idna.h"
#include "platform/text_decoder.h"

namespace quenlar {

// Views into memory of the caller, which must stay as it is until the page has been read.
struct ReadRequest {
  std::string_view body;
  const Url* url = nullptr;       // the page's own address; null where it has none that is http or https
  std::string_view content_type;  // the header's value; may be empty. "text/plain" is read as text without markup
  bool body_is_utf8 = false;      // whatever the page says of its charset
  std::span<const std::string> robots_headers = {};  // values of X-Robots-Tag
  // With `links` off, a page on which nothing may be an address is not read at all: its title, base and words for
  // robots are then not looked for either.
  bool links = true;
  bool count_protected = true;  // without it protected addresses are neither looked for nor counted
  // Protected addresses are listed, with the place kProtected. They are then looked for, and counted, even without
  // `count_protected`.
  bool decode_protected = false;
};

struct ReadResult {
  std::optional<std::string> title;     // of the first <title>: blanks run together, at most 500 characters
  std::string base;                     // what relative links are relative to; empty where the page has no address
  std::vector<PageLink> links;          // in the order of the page
  std::vector<PageAddress> addresses;   // in the order of the page; views into `finder`, which may be null without any
  std::size_t protected_addresses = 0;  // 0 where they are not looked for
  RobotsWords robots;                   // of the headers, then of the page
  std::unique_ptr<AddressFinder> finder;
};

// Reads the page in one pass over its bytes, in linear time whatever they are (docs/reading.md). Never fails: what is
// not HTML is read as the HTML that it would be.
[[nodiscard]] ReadResult ReadPage(const ReadRequest& request, const Idna& idna, const TextDecoder& decoder);

}  // namespace quenlar
