// The settings of collections that are stored once given.
#pragma once

#include <string>

#include "base/status.h"
#include "platform/registry.h"

namespace quenlar {

// The registry key; it is not that of the projects.
inline constexpr const char* kWebKey = "Software\\Quenlar\\Web";

struct WebOptions {
  std::string contact;         // of the person who collects; empty: none
  std::string search_service;  // the address of a search service; empty: none
};

[[nodiscard]] WebOptions LoadWebOptions(const Registry& registry);
// Stores what is not empty and differs from what is stored.
Status StoreWebOptions(Registry& registry, const WebOptions& given);

}  // namespace quenlar
