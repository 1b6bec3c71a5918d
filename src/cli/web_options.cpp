#include "cli/web_options.h"

namespace quenlar {
namespace {

constexpr const char* kContact = "Contact";
constexpr const char* kSearchService = "SearchService";

std::string Stored(const Registry& registry, const char* name) {
  return registry.ValueExists(kWebKey, name) ? registry.GetRegValue(kWebKey, name) : std::string();
}

void Store(Registry& registry, const char* name, const std::string& given) {
  if (!given.empty() && given != Stored(registry, name)) registry.SaveRegValue(kWebKey, name, given);
}

}  // namespace

WebOptions LoadWebOptions(const Registry& registry) {
  return {Stored(registry, kContact), Stored(registry, kSearchService)};
}

Status StoreWebOptions(Registry& registry, const WebOptions& given) {
  Store(registry, kContact, given.contact);
  Store(registry, kSearchService, given.search_service);
  return registry.Flush();
}

}  // namespace quenlar
