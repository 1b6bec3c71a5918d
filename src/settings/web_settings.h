// The settings of collections, one row each, and where they are stored. The window and the command line share them.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "base/status.h"
#include "platform/registry.h"
#include "state/settings_table.h"

namespace quenlar {

// The registry key; it is not that of the projects.
inline constexpr const char* kWebKey = "Software\\Quenlar\\Web";

// What people choose among for the scope. The setting holds the index of an entry.
struct ScopeChoice {
  const char* word;  // on the command line
  const char* name;  // in the window
};
inline constexpr ScopeChoice kScopeChoices[] = {
    {"host", "The start's host alone"}, {"site", "The start's site"}, {"anywhere", "Any site"}};

// The values here are those of a first start. Contact and search service hold for the command line too; the others are
// the window's, because each command of the command line has defaults of its own that its help names.
struct WebSettings {
  std::int16_t collect = 0;            // 1: the window collects from today's web
  std::string contact;                 // of the person who collects; empty: none
  std::string search_service;          // the address of a search service; empty: none
  std::int16_t scope = 1;              // an index of kScopeChoices
  std::int32_t depth = 5;              // clicks from a start
  std::int32_t pages_per_host = 1000;  // over all runs
  std::int32_t hosts = 64;             // at the same time
  std::int32_t pause = 1000;           // between two pages of a host, in milliseconds
  std::int16_t obey_robots = 1;        // 0: robots.txt is not asked for
  std::int16_t list_protected = 0;     // 1: addresses that their owners hide from programs are listed too
};
using WebRow = SettingRowOf<WebSettings>;

// In the order in which they are written.
[[nodiscard]] const std::vector<WebRow>& WebSettingsTable();
// The row of one of the numbers.
[[nodiscard]] const WebRow& RowOf(std::int32_t WebSettings::*number);

// Returns what is stored. A value that is missing, or a number out of its bounds, counts as that of a first start.
[[nodiscard]] WebSettings LoadWebSettings(const Registry& registry);

// Stores the values that differ from what LoadWebSettings gives.
Status StoreWebSettings(Registry& registry, const WebSettings& settings);

}  // namespace quenlar
