#include "cli/declarations.h"

#include <CLI/CLI.hpp>

#include "base/ascii.h"

namespace quenlar {
namespace {

DeclaredOption Describe(const CLI::Option& option) {
  DeclaredOption described;
  for (const std::string& name : option.get_snames()) described.names.push_back("-" + name);
  for (const std::string& name : option.get_lnames()) described.names.push_back("--" + name);
  if (described.names.empty()) described.names.push_back(option.get_name());
  if (option.get_items_expected_max() != 0) described.type = option.get_type_name();
  described.help = option.get_description();
  described.required = option.get_required();
  described.repeated = option.get_items_expected_max() > 1;
  return described;
}

DeclaredCommand Describe(const CLI::App& app, const std::string& name) {
  DeclaredCommand described{name, app.get_description(), app.get_footer(), {}};
  for (const CLI::Option* option : app.get_options()) described.options.push_back(Describe(*option));
  return described;
}

}  // namespace

std::vector<std::string> DeclaredOption::choices() const {
  if (type.find('|') == std::string::npos) return {};
  std::vector<std::string> words;
  for (const std::string_view word : Split(type, "|")) words.emplace_back(word);
  return words;
}

std::vector<DeclaredCommand> Declarations(const CLI::App& root) {
  std::vector<DeclaredCommand> commands = {Describe(root, "")};
  for (const CLI::App* command : root.get_subcommands([](const CLI::App*) { return true; })) {
    if (!command->get_group().empty()) commands.push_back(Describe(*command, command->get_name()));
  }
  return commands;
}

}  // namespace quenlar
