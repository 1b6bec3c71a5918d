// The commands and options as they are declared, for the man page and the shells' completion.
#pragma once

#include <string>
#include <vector>

namespace CLI {
class App;
}

namespace quenlar {

struct DeclaredOption {
  std::vector<std::string> names;  // "-y", "--yes"; the name alone for an argument by position
  std::string type;                // "FILE", "a|b|c", or "" where no value is taken
  std::string help;
  bool required = false;
  bool repeated = false;  // takes several values, or may be given several times

  [[nodiscard]] bool positional() const { return names.front().front() != '-'; }
  // "a", "b", "c" of a type "a|b|c"; empty for any other type.
  [[nodiscard]] std::vector<std::string> choices() const;
};

struct DeclaredCommand {
  std::string name;  // "" for the program itself
  std::string help;
  std::string footer;  // explanation, then "Examples:" and a line each
  std::vector<DeclaredOption> options;
};

// The program itself first, then its commands in the order of their declaration; hidden ones are left out.
[[nodiscard]] std::vector<DeclaredCommand> Declarations(const CLI::App& root);

// docs/quenlar.1 and packaging/linux/quenlar.bash, _quenlar and quenlar.fish.
[[nodiscard]] std::string ManPage(const std::vector<DeclaredCommand>& commands);
[[nodiscard]] std::string BashCompletion(const std::vector<DeclaredCommand>& commands);
[[nodiscard]] std::string ZshCompletion(const std::vector<DeclaredCommand>& commands);
[[nodiscard]] std::string FishCompletion(const std::vector<DeclaredCommand>& commands);

}  // namespace quenlar
