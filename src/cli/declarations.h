// The commands and options as data. The manual page and the completions of the shells are made of them.
#pragma once

#include <string>
#include <vector>

namespace CLI {
class App;
}

namespace quenlar {

// An option of a command, or an argument that it takes by its position.
struct DeclaredOption {
  std::vector<std::string> names;  // "-y", "--yes"; the name alone for an argument by position
  std::string type;                // "FILE", "a|b|c", or "" where no value is taken
  std::string help;
  bool required = false;
  bool repeated = false;  // takes several values, or may be given several times

  [[nodiscard]] bool positional() const { return names.front().front() != '-'; }
  // Returns "a", "b" and "c" for the type "a|b|c", and nothing for any other type.
  [[nodiscard]] std::vector<std::string> choices() const;
};

// A command with its help and its options.
struct DeclaredCommand {
  std::string name;  // "" for the program itself
  std::string help;
  std::string footer;  // explanation, then "Examples:" and a line each
  std::vector<DeclaredOption> options;
};

// Returns the program itself and then its commands, in the order of their declaration. Hidden ones are left out.
[[nodiscard]] std::vector<DeclaredCommand> Declarations(const CLI::App& root);

// Return the contents of docs/quenlar.1 and of quenlar.bash, _quenlar and quenlar.fish in packaging/linux.
[[nodiscard]] std::string ManPage(const std::vector<DeclaredCommand>& commands);
[[nodiscard]] std::string BashCompletion(const std::vector<DeclaredCommand>& commands);
[[nodiscard]] std::string ZshCompletion(const std::vector<DeclaredCommand>& commands);
[[nodiscard]] std::string FishCompletion(const std::vector<DeclaredCommand>& commands);

}  // namespace quenlar
