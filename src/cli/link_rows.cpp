#include "cli/link_rows.h"

#include <limits>
#include <optional>
#include <string>
#include <utility>

#include <nlohmann/json.hpp>

#include "base/ascii.h"

namespace quenlar {
namespace {

// False where the member is missing, nothing where it is not a truth value.
std::optional<bool> FlagOf(const nlohmann::json& row, const char* member) {
  const auto found = row.find(member);
  if (found == row.end()) return false;
  return found->is_boolean() ? std::optional<bool>(found->get<bool>()) : std::nullopt;
}

std::optional<int> DepthOf(const nlohmann::json& row) {
  const auto found = row.find("depth");
  if (found == row.end()) return 0;
  if (!found->is_number_unsigned()) return std::nullopt;
  const auto depth = found->get<std::uint64_t>();
  if (depth > static_cast<std::uint64_t>(std::numeric_limits<int>::max())) return std::nullopt;
  return static_cast<int>(depth);
}

std::optional<HandedLink> ParseRow(std::string_view line) {
  const nlohmann::json row = nlohmann::json::parse(line, nullptr, false);
  if (!row.is_object()) return std::nullopt;
  const auto url = row.find("url");
  const auto depth = DepthOf(row);
  const auto may_be_private = FlagOf(row, "private"), https_first = FlagOf(row, "https_first");
  if (url == row.end() || !url->is_string() || !depth || !may_be_private || !https_first) return std::nullopt;
  return HandedLink{url->get<std::string>(), *depth, *may_be_private, *https_first};
}

}  // namespace

Result<std::vector<HandedLink>> ParseLinkRows(std::string_view text) {
  std::vector<HandedLink> links;
  int number = 0;
  for (const std::string_view line : Split(text, "\n")) {
    ++number;
    if (line.empty() || line == "\r") continue;
    std::optional<HandedLink> link = ParseRow(line);
    if (!link) return Status(StatusKind::kFormat, "Line " + std::to_string(number) + " is not a link");
    links.push_back(std::move(*link));
  }
  return links;
}

}  // namespace quenlar
