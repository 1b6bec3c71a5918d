// The records of a WARC 1.1 file (ISO 28500), each a gzip member of its own.
#pragma once

#include <cstdint>
#include <string>

#include "platform/web_client.h"

namespace quenlar {

// What all records of a file have in common.
struct WarcOrigin {
  std::string software;    // "Quenlar/3.0"
  std::string user_agent;  // as it is sent to the sites
  std::string robots;      // "obey" or "ignore"
};

// Makes the ids of records.
class WarcIds {
 public:
  WarcIds();
  // "<urn:uuid:...>", a random UUID of version 4 (RFC 4122).
  [[nodiscard]] std::string Next();

 private:
  std::uint64_t state_[2];
};

// Why the body of an answer is not whole (ISO 28500, WARC-Truncated); kNone: it is.
enum class WarcCut { kNone, kLength, kUnspecified };

// The functions below give whole gzip members, or "" where memory is short. Times are seconds since 1970 UTC.
//
// The record that a file begins with: what wrote it, and how.
[[nodiscard]] std::string WarcInfoRecord(const WarcOrigin& origin, const std::string& id, const std::string& file_name,
                                         std::int64_t time);

struct WarcExchange {
  const std::string& url;
  const std::string& ip;  // whom the answer came from; may be empty
  const WebWire& wire;
  WarcCut cut = WarcCut::kNone;
  std::int64_t time = 0;
  const std::string& info_id;  // of the file's first record
};

// The request, and the answer where there is one, one behind the other.
[[nodiscard]] std::string WarcExchangeRecords(const WarcExchange& exchange, WarcIds& ids);

}  // namespace quenlar
