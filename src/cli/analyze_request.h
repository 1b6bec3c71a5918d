// The requests of `quenlar analyze`: one JSON object a line. docs/analyze.md tells each with its reply.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "base/status.h"
#include "cli/json_text.h"
#include "cli/page_functions.h"
#include "state/settings_table.h"

namespace quenlar {

struct SettingsRequest {
  std::vector<SettingChange> changes;
  std::optional<std::vector<std::string>> remove_words, extract_words;
};
struct OpenRequest {
  std::string text;
};
// The completion of a request: text in UTF-8, or a body in the ANSI code page.
struct PageRequest {
  std::string name, contents;
  bool is_body = false;
};
struct RedirectRequest {
  std::string name, address;
};
struct FailRequest {
  std::string name;
};
struct ResolveRequest {
  std::string target, page;
};
struct HostRequest {
  std::string address;
};
struct SaveRequest {};
struct ResetRequest {};
// A request of cli/page_functions.h: what answers it, and all of its members.
struct FunctionRequest {
  PageFunction function;
  nlohmann::json members;
};

using AnalyzeRequest = std::variant<SettingsRequest, OpenRequest, PageRequest, RedirectRequest, FailRequest,
                                    ResolveRequest, HostRequest, SaveRequest, ResetRequest, FunctionRequest>;

struct ParsedLine {
  std::optional<Json> id;          // the member `id`, also of a line that is otherwise wrong
  Result<AnalyzeRequest> request;  // the failure is the answer's error text
};

// Holds memory in proportion to the line, also for hostile ones. Every member is checked before anything is made of it.
[[nodiscard]] ParsedLine ParseAnalyzeLine(std::string_view line);

}  // namespace quenlar
