// The work of the commands, each with the arguments that it takes. Each returns the exit status and may pump.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "cli/collect_run.h"
#include "cli/extract_run.h"
#include "cli/harvest_run.h"
#include "cli/invocation.h"
#include "collection/collection_reader.h"

namespace CLI {
class App;
}

namespace quenlar {

// A text is empty when the option was not given.
struct ExtractArguments {
  ExtractOptions options;
  std::string format = "lines", search_engine, proxy, summary;
};

struct CollectArguments {
  CollectOptions options;
  std::string from, links, scope = "site", robots = "obey", format = "lines", proxy, summary;
  std::string language;  // of searches; empty: the stored one
  double delay = 1;      // seconds
};

struct HarvestArguments {
  HarvestOptions options;
  std::string format = "lines", robots = "obey", summary;
};

struct AddressesArguments {
  std::string name, format = "lines", since;
  bool sources = false;
  SightingChoice choice;
};

struct WhyArguments {
  std::string name, what, format = "text";
};

struct SuppressArguments {
  std::vector<std::string> entries, remove;
  std::string import;
};

struct EraseArguments {
  std::string address;
  bool suppress = false, yes = false;
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
[[nodiscard]] int Collect(Invocation& invocation, const CollectArguments& arguments);
[[nodiscard]] int HarvestInputs(Invocation& invocation, const HarvestArguments& arguments);
[[nodiscard]] int Addresses(Invocation& invocation, const AddressesArguments& arguments);
[[nodiscard]] int Why(Invocation& invocation, const WhyArguments& arguments);
[[nodiscard]] int Collections(Invocation& invocation);
[[nodiscard]] int Suppress(Invocation& invocation, const SuppressArguments& arguments);
[[nodiscard]] int Erase(Invocation& invocation, const EraseArguments& arguments);
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
