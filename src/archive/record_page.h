// Reads pages out of the records of an archive, and out of files.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "archive/record_batches.h"
#include "page/address_place.h"
#include "platform/idna.h"
#include "platform/text_decoder.h"

namespace quenlar {

// A page with addresses.
struct HarvestedPage {
  struct Address {
    std::uint32_t begin, size;                  // in `texts`
    std::uint32_t written_begin, written_size;  // the same
    AddressPlace place;
    bool first;  // it does not stand in another place before, whatever its letter case
  };

  std::string url;                   // by the URL Standard; of a file what the caller calls it
  bool of_record = false;            // not of a file
  std::string title;                 // empty without one
  std::string type;                  // media type without parameters, in lower case; empty without one
  int status = 0;                    // of the HTTP answer; 0 where there was none
  std::optional<std::int64_t> seen;  // the record's date, in seconds since 1970 UTC
  std::string texts;
  std::vector<Address> addresses;  // in the order of the page

  [[nodiscard]] std::string_view AddressOf(const Address& a) const {
    return std::string_view(texts).substr(a.begin, a.size);
  }
  [[nodiscard]] std::string_view WrittenOf(const Address& a) const {
    return std::string_view(texts).substr(a.written_begin, a.written_size);
  }
};

struct PageReading {
  const Idna& idna;
  const TextDecoder& decoder;
  bool decode_protected = false;
  bool obey_robots = true;  // addresses of pages that say "noindex" are not given
};

inline constexpr std::size_t kMostPage = 8u << 20;  // bytes of a page that are read

// How much of what was read were pages.
struct PageCounts {
  std::uint64_t pages = 0;  // read, with addresses or without
};

// The page in a record, where it is one: an answer with a status from 200 to 299, or a resource or conversion, of a
// type that pages have, whose target is an http or https URL and not that of a robots.txt. Empty where it is not, and
// where it has no addresses.
[[nodiscard]] std::optional<HarvestedPage> ReadRecordPage(const WarcRecord& record, const PageReading& reading,
                                                          PageCounts& counts);

// The page that a file is; empty where it has no addresses, or asks not to be indexed and is obeyed. `content_type` is
// "text/html" or "text/plain", `name` becomes the page's `url`.
[[nodiscard]] std::optional<HarvestedPage> ReadFilePage(std::string_view body, std::string_view content_type,
                                                        const std::string& name, const PageReading& reading,
                                                        PageCounts& counts);

}  // namespace quenlar
