// The work of the commands, each with the arguments that it takes. Each returns the exit status and may pump.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "cli/extract_run.h"
#include "cli/invocation.h"

namespace CLI {
class App;
}

namespace quenlar {

// A text is empty when the option was not given.
struct ExtractArguments {
  ExtractOptions options;
  std::string format = "lines", search_engine, proxy, summary;
};

struct DeleteArguments {
  std::string text;
  bool yes = false;
};

struct MergeArguments {
  std::vector<std::string> books;
  std::string output;
  bool force = false;
};

struct OptionsArguments {
  std::optional<std::string> name, value;
};

struct FilterArguments {
  std::optional<std::vector<std::string>> remove, extract;
};

[[nodiscard]] int Extract(Invocation& invocation, const ExtractArguments& arguments);
[[nodiscard]] int Analyze(Invocation& invocation);
[[nodiscard]] int Projects(Invocation& invocation);
[[nodiscard]] int Delete(Invocation& invocation, const DeleteArguments& arguments);
[[nodiscard]] int Report(Invocation& invocation, const std::string& text);
[[nodiscard]] int Merge(Invocation& invocation, const MergeArguments& arguments);
[[nodiscard]] int Options(Invocation& invocation, const OptionsArguments& arguments);
[[nodiscard]] int Filter(Invocation& invocation, const FilterArguments& arguments);
[[nodiscard]] int Net(Invocation& invocation, bool watch);
[[nodiscard]] int Demo(Invocation& invocation);
// `what` is "man", "bash", "zsh" or "fish"; `root` has all commands.
[[nodiscard]] int DescribeAs(Invocation& invocation, const CLI::App& root, const std::string& what);

}  // namespace quenlar
