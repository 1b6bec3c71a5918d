// Link resolution, the link builders and the texts of a tag done step by step on copies, with linear scans: what the
// program's own are checked against.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

namespace quenlar {

[[nodiscard]] std::string ReferenceHost(const std::string& address);
[[nodiscard]] std::string ReferenceResolve(std::string target, const std::string& page);
[[nodiscard]] std::string ReferenceAttribute(const std::string& tag, const std::string& name);
[[nodiscard]] std::string ReferenceClean(const std::string& text);

struct ReferenceLink {
  std::string url;
  std::int16_t number;
  bool operator==(const ReferenceLink&) const = default;
};

struct ReferenceQueues {
  bool is_keyword = false;
  int correlation_mode = 1;
  std::array<std::vector<ReferenceLink>, 11> levels;

  void MakeLink(std::string address, const std::string& page, const std::string& digit);
  void MakeExpandLink(int level, std::string address, const std::string& page, std::int16_t number);
  void AddResult(std::string target);

 private:
  [[nodiscard]] bool HasHost(const std::string& address) const;
  void OtherSite(const std::string& address);
  void SameSite(std::vector<ReferenceLink>& queue, const std::string& address, std::int16_t number);
};

}  // namespace quenlar
