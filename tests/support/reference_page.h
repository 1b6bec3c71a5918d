// A whole page analysis done step by step with the patterns as they are written and with linear scans: what the
// program's own is checked against.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "support/reference_links.h"
#include "support/reference_pattern.h"

namespace quenlar {

inline constexpr const char* kReferenceTagPattern = "<[^<]*?[a-z0-9._%+-]+@[a-z0-9.-]+\\.[a-z]{2,4}[^<]*?>";
inline constexpr const char* kReferenceTextPattern = ">[^<]*?[a-z0-9._%+-]+@[a-z0-9.-]+\\.[a-z]{2,4}[^<]*?<";
inline constexpr const char* kReferenceAddressPattern = "\\b[a-z0-9._%+-]+@[a-z0-9.-]+\\.[a-z]{2,4}\\b";
inline constexpr const char* kReferenceTitlePattern = "<TITLE>([\\s\\S]*?)</TITLE>";
inline constexpr const char* kReferenceResultPattern = "<h3 class=[\\s\\S]*?r[\\s\\S]*?>[\\s\\S]*?href=\"[\\s\\S]*?\"";

struct ReferenceRecord {
  std::string url, address, title;
  bool tag_only;
  bool operator==(const ReferenceRecord&) const = default;
};

// Everything that analyses change, kept in plain lists. Nothing arrives while it works.
class ReferenceAnalysis {
 public:
  explicit ReferenceAnalysis(const MakeReferencePattern& make = BoostPattern);

  ReferenceQueues queues;
  std::vector<ReferenceRecord> found;
  std::int64_t baseline = 0, stop_number = 99999;
  int save_every = 30;
  bool stop_requested = false;
  std::vector<std::size_t> saves;  // the address count at each save

  // False when a stop request cut the tag walk short.
  bool ParsePage(const std::string& page, const std::string& request_name);
  void CollectResultLinks(const std::string& page);

  [[nodiscard]] std::string Title(const std::string& page) const;
  [[nodiscard]] std::string FirstAddress(std::string_view text) const;
  [[nodiscard]] std::vector<std::string_view> TagMatches(std::string_view page) const { return tag_->FindAll(page); }
  [[nodiscard]] std::vector<std::string_view> TextMatches(std::string_view page) const { return text_->FindAll(page); }
  [[nodiscard]] std::vector<std::string_view> Addresses(std::string_view text) const { return address_->FindAll(text); }

 private:
  void Harvest(const std::string& page, const std::string& page_address);
  bool Insert(const std::string& address, const std::string& page_address, const std::string& title, bool tag_only);
  bool TagWalk(const std::string& page, int level, const std::string& page_address, const std::string& digit);

  std::unique_ptr<ReferencePattern> tag_, text_, address_, title_, result_;
};

}  // namespace quenlar
