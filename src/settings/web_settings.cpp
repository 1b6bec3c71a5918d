#include "settings/web_settings.h"

#include <cassert>
#include <iterator>

namespace quenlar {
namespace {

constexpr std::int32_t kMostClicks = 1000;
constexpr std::int32_t kMostPages = 1'000'000'000;
constexpr std::int32_t kMostHosts = 100'000;
constexpr std::int32_t kLongestPause = 3'600'000;

std::vector<WebRow> MakeTable() {
  return {
      {.value_name = "Collect",
       .variable = &WebSettings::collect,
       .meaning = "1: the window collects from today's web"},
      {.value_name = "Contact", .variable = &WebSettings::contact, .meaning = "a web or mail address of who collects"},
      {.value_name = "SearchService",
       .variable = &WebSettings::search_service,
       .meaning = "the address of a search service, for keywords"},
      {.value_name = "Scope",
       .variable = &WebSettings::scope,
       .highest = std::ssize(kScopeChoices) - 1,
       .meaning = "what links may lead to: 0 the start's host, 1 its site, 2 any site"},
      {.value_name = "Depth",
       .variable = &WebSettings::depth,
       .highest = kMostClicks,
       .meaning = "clicks from a start"},
      {.value_name = "PagesPerHost",
       .variable = &WebSettings::pages_per_host,
       .lowest = 1,
       .highest = kMostPages,
       .meaning = "pages of a host, over all runs"},
      {.value_name = "Hosts",
       .variable = &WebSettings::hosts,
       .lowest = 1,
       .highest = kMostHosts,
       .meaning = "hosts that are visited at the same time"},
      {.value_name = "Pause",
       .variable = &WebSettings::pause,
       .highest = kLongestPause,
       .meaning = "milliseconds between two pages of a host"},
      {.value_name = "ObeyRobots",
       .variable = &WebSettings::obey_robots,
       .meaning = "0: the wishes of robots.txt and of pages are not obeyed"},
      {.value_name = "ListProtected",
       .variable = &WebSettings::list_protected,
       .meaning = "1: addresses that their owners hide from programs are listed too"},
  };
}

// Whether a number is one that people may set. Any text may be stored.
bool IsInBounds(const WebSettings& settings, const WebRow& row) {
  const auto in_bounds = [&](auto variable) {
    if constexpr (std::is_same_v<decltype(variable), std::string WebSettings::*>) {
      return true;
    } else {
      return settings.*variable >= row.lowest && settings.*variable <= row.highest;
    }
  };
  return std::visit(in_bounds, row.variable);
}

}  // namespace

const std::vector<WebRow>& WebSettingsTable() {
  static const std::vector<WebRow> kTable = MakeTable();
  return kTable;
}

const WebRow& RowOf(std::int32_t WebSettings::*number) {
  for (const WebRow& row : WebSettingsTable()) {
    const auto* const variable = std::get_if<std::int32_t WebSettings::*>(&row.variable);
    if (variable != nullptr && *variable == number) return row;
  }
  assert(false);
  return WebSettingsTable().front();
}

WebSettings LoadWebSettings(const Registry& registry) {
  WebSettings settings;
  for (const WebRow& row : WebSettingsTable()) {
    if (!registry.ValueExists(kWebKey, row.value_name)) continue;
    SetFromText(settings, row, registry.GetRegValue(kWebKey, row.value_name));
    if (!IsInBounds(settings, row)) SetFromText(settings, row, SettingText(WebSettings(), row));
  }
  return settings;
}

Status StoreWebSettings(Registry& registry, const WebSettings& settings) {
  const WebSettings stored = LoadWebSettings(registry);
  for (const WebRow& row : WebSettingsTable()) {
    const std::string text = SettingText(settings, row);
    if (text != SettingText(stored, row)) registry.SaveRegValue(kWebKey, row.value_name, text);
  }
  return registry.Flush();
}

}  // namespace quenlar
