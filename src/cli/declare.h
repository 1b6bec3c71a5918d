// What the declarations of commands share (declare_commands.cpp, declare_collection_commands.cpp).
#pragma once

#include <memory>
#include <string>
#include <vector>

#include <CLI/CLI.hpp>

#include "cli/declare_commands.h"

namespace quenlar {

// `arguments` are filled in by the parsing, and live as long as the command.
template <typename Arguments, typename Work>
void Choose(CLI::App& command, Command& chosen, Work work, const std::shared_ptr<Arguments>& arguments) {
  command.callback([&chosen, work, arguments] {
    chosen = [work, arguments](Invocation& invocation) { return work(invocation, *arguments); };
  });
}

// Holds an option to a few words; its type name lists them ("a|b|c").
void TakeOneOf(CLI::Option& option, const std::vector<std::string>& words);

// Of an option that takes many. The help of one without a limit would add "..." to its type name by itself.
inline constexpr int kMostWords = 32767;

// An option that takes one of a few words.
void DeclareChoice(CLI::App& command, const std::string& name, std::string& value,
                   const std::vector<std::string>& words, const std::string& help);

// --remove and --extract: the filters of one run.
void DeclareFilterWords(CLI::App& command, std::vector<std::string>& remove, std::vector<std::string>& extract);

// --proxy and --assume-online.
void DeclareNetwork(CLI::App& command, std::string& proxy, bool& assume_online);

// Adds the commands of collections and of the list of people who object: declare_collection_commands.cpp.
void DeclareCollectionCommands(CLI::App& root, Command& chosen);

}  // namespace quenlar
