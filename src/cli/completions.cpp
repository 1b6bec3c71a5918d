// Completion of command lines for bash, zsh and fish.
#include <algorithm>

#include <fmt/format.h>

#include "base/ascii.h"
#include "cli/declarations.h"

namespace quenlar {
namespace {

std::string Joined(const std::vector<std::string>& words, const char* separator) {
  std::string joined;
  for (const std::string& word : words) joined += (joined.empty() ? "" : separator) + word;
  return joined;
}

// Arguments that are the name of a file, or begin like one.
bool IsFile(const std::string& kind) { return kind == "FILE" || kind == "BOOK" || kind == "INPUT" || kind == "PREFIX"; }

constexpr const char* kCollections = "quenlar collections 2>/dev/null | cut -f1";

// The kind of an argument that is given by its position, or of an option's value. NAME is a setting for the command of
// settings and a collection for all others. TEXT is a project by its position and anything else behind an option.
std::string KindOf(const DeclaredCommand& command, const DeclaredOption& option) {
  if (!option.positional()) return option.type == "TEXT" ? "" : option.type;
  const std::string& kind = option.names.front();
  return command.name == "options" && kind == "NAME" ? "SETTING" : kind;
}

// What stands for a value in bash: a word list, files, folders, projects, collections, settings, or nothing to offer.
std::string BashValues(const std::string& kind, const std::vector<std::string>& choices) {
  if (!choices.empty()) return fmt::format("COMPREPLY=($(compgen -W \"{}\" -- \"$word\"))", Joined(choices, " "));
  if (IsFile(kind)) return "COMPREPLY=($(compgen -f -- \"$word\"))";
  if (kind == "DIR") return "COMPREPLY=($(compgen -d -- \"$word\"))";
  if (kind == "TEXT") {
    return "local IFS=$'\\n'; COMPREPLY=($(compgen -W \"$(quenlar projects 2>/dev/null)\" -- \"$word\"))";
  }
  if (kind == "NAME") {
    return fmt::format("local IFS=$'\\n'; COMPREPLY=($(compgen -W \"$({})\" -- \"$word\"))", kCollections);
  }
  if (kind == "SETTING") {
    return "COMPREPLY=($(compgen -W \"$(quenlar options 2>/dev/null | cut -d' ' -f1)\" -- \"$word\"))";
  }
  return "COMPREPLY=()";
}

std::string ZshValues(const std::string& kind, const std::vector<std::string>& choices) {
  if (!choices.empty()) return "(" + Joined(choices, " ") + ")";
  if (IsFile(kind)) return "_files";
  if (kind == "DIR") return "_files -/";
  if (kind == "TEXT") return "{compadd -- ${(f)\"$(quenlar projects 2>/dev/null)\"}}";
  if (kind == "NAME") return fmt::format("{{compadd -- ${{(f)\"$({})\"}}}}", kCollections);
  if (kind == "SETTING") return "{compadd -- ${${(f)\"$(quenlar options 2>/dev/null)\"}%% *}}";
  return "";
}

// Words of an option list: every name of every option that is none by position.
std::string OptionNames(const DeclaredCommand& command) {
  std::vector<std::string> names;
  for (const DeclaredOption& option : command.options) {
    if (!option.positional()) names.insert(names.end(), option.names.begin(), option.names.end());
  }
  return Joined(names, " ");
}

std::string CommandNames(const std::vector<DeclaredCommand>& commands) {
  std::vector<std::string> names;
  for (const DeclaredCommand& command : commands) {
    if (!command.name.empty()) names.push_back(command.name);
  }
  return Joined(names, " ");
}

void AddBashValues(const DeclaredCommand& command, std::string& script) {
  for (const DeclaredOption& option : command.options) {
    if (option.positional() || option.type.empty()) continue;
    std::string pattern;
    for (const std::string& name : option.names) pattern += (pattern.empty() ? "" : " | ") + command.name + ":" + name;
    script += fmt::format("    {}) {}; return ;;\n", pattern, BashValues(KindOf(command, option), option.choices()));
  }
}

// In zsh's _arguments a text stands between brackets and quotes.
std::string ZshHelp(const std::string& help) {
  std::string quoted = ReplaceAll(ReplaceAll(help, "[", "("), "]", ")");
  return ReplaceAll(ReplaceAll(quoted, "'", "'\\''"), ":", "\\:");
}

std::string ZshSpecification(const DeclaredCommand& command, const DeclaredOption& option) {
  if (option.positional()) {
    return fmt::format("'{}:{}:{}'", option.repeated ? "*" : "", option.names.front(),
                       ZshValues(KindOf(command, option), {}));
  }
  const std::string value = option.type.empty() ? ""
                                                : fmt::format(":{}:{}", option.choices().empty() ? option.type : "word",
                                                              ZshValues(KindOf(command, option), option.choices()));
  const std::string repeated = option.repeated ? "*" : "";
  if (option.names.size() == 1) {
    return fmt::format("'{}{}[{}]{}'", repeated, option.names.front(), ZshHelp(option.help), value);
  }
  return fmt::format("'({})'{{{}}}'[{}]{}'", Joined(option.names, " "), Joined(option.names, ","), ZshHelp(option.help),
                     value);
}

void AddZshArguments(const DeclaredCommand& command, const char* indent, std::string& script) {
  for (const DeclaredOption& option : command.options) {
    script += fmt::format(" \\\n{}{}", indent, ZshSpecification(command, option));
  }
}

// In fish a text stands between apostrophes.
std::string FishQuoted(const std::string& text) {
  return "'" + ReplaceAll(ReplaceAll(text, "\\", "\\\\"), "'", "\\'") + "'";
}

std::string FishValues(const std::string& kind, const std::vector<std::string>& choices) {
  if (!choices.empty()) return " -x -a " + FishQuoted(Joined(choices, " "));
  if (IsFile(kind)) return " -r -F";
  if (kind == "DIR") return " -x -a '(__fish_complete_directories)'";
  return " -x";
}

std::string FishArguments(const std::string& kind) {
  if (IsFile(kind)) return " -F";
  if (kind == "TEXT") return " -a '(quenlar projects 2>/dev/null)'";
  if (kind == "NAME") return fmt::format(" -a '({})'", kCollections);
  if (kind == "SETTING") return " -a '(quenlar options 2>/dev/null | string split -f1 \" \")'";
  return "";
}

void AddFishOptions(const DeclaredCommand& command, const std::string& condition, std::string& script) {
  for (const DeclaredOption& option : command.options) {
    std::string line = "complete -c quenlar" + condition;
    if (option.positional()) {
      const std::string values = FishArguments(KindOf(command, option));
      if (values.empty()) continue;
      script += line + values + "\n";
      continue;
    }
    for (const std::string& name : option.names) {
      line += name.starts_with("--") ? " -l " + name.substr(2) : " -s " + name.substr(1);
    }
    if (!option.type.empty()) line += FishValues(option.type, option.choices());
    if (option.type == "NAME") line += FishArguments(option.type);
    script += line + " -d " + FishQuoted(option.help) + "\n";
  }
}

}  // namespace

std::string BashCompletion(const std::vector<DeclaredCommand>& commands) {
  std::string script =
      "# Completion of quenlar for bash, made by `quenlar describe bash`.\n"
      "_quenlar() {\n"
      "  local word=${COMP_WORDS[COMP_CWORD]} before=${COMP_WORDS[COMP_CWORD-1]} command= i\n"
      "  for ((i = 1; i < COMP_CWORD; ++i)); do\n"
      "    case ${COMP_WORDS[i]} in\n"
      "      --home) ((++i)) ;;\n"
      "      -*) ;;\n"
      "      *) command=${COMP_WORDS[i]}; break ;;\n"
      "    esac\n"
      "  done\n"
      "  case $command:$before in\n"
      "    *:--home) COMPREPLY=($(compgen -d -- \"$word\")); return ;;\n";
  for (const DeclaredCommand& command : commands) {
    if (!command.name.empty()) AddBashValues(command, script);
  }
  script += "  esac\n  case $command:$word in\n";
  for (const DeclaredCommand& command : commands) {
    script += fmt::format("    {}:-*) COMPREPLY=($(compgen -W \"{}\" -- \"$word\")) ;;\n", command.name,
                          OptionNames(command));
  }
  script += fmt::format("    :*) COMPREPLY=($(compgen -W \"{}\" -- \"$word\")) ;;\n", CommandNames(commands));
  for (const DeclaredCommand& command : commands) {
    const auto first = std::find_if(command.options.begin(), command.options.end(),
                                    [](const DeclaredOption& option) { return option.positional(); });
    if (first == command.options.end()) continue;
    script += fmt::format("    {}:*) {} ;;\n", command.name, BashValues(KindOf(command, *first), {}));
  }
  return script + "  esac\n}\ncomplete -o filenames -F _quenlar quenlar\n";
}

std::string ZshCompletion(const std::vector<DeclaredCommand>& commands) {
  std::string script =
      "#compdef quenlar\n"
      "# Completion of quenlar for zsh, made by `quenlar describe zsh`.\n"
      "_quenlar() {\n"
      "  local context state state_descr line\n"
      "  typeset -A opt_args\n"
      "  _arguments -C";
  AddZshArguments(commands.front(), "    ", script);
  script += " \\\n    '1:command:->command' \\\n    '*::argument:->argument'\n  case $state in\n    command)\n";
  script += "      local -a commands=(\n";
  for (const DeclaredCommand& command : commands) {
    if (!command.name.empty()) script += fmt::format("        '{}:{}'\n", command.name, ZshHelp(command.help));
  }
  script += "      )\n      _describe command commands\n      ;;\n    argument)\n      case $line[1] in\n";
  for (const DeclaredCommand& command : commands) {
    if (command.name.empty()) continue;
    script += fmt::format("        {})\n          _arguments", command.name);
    AddZshArguments(command, "            ", script);
    script += "\n          ;;\n";
  }
  return script + "      esac\n      ;;\n  esac\n}\n_quenlar \"$@\"\n";
}

std::string FishCompletion(const std::vector<DeclaredCommand>& commands) {
  std::string script =
      "# Completion of quenlar for fish, made by `quenlar describe fish`.\n"
      "complete -c quenlar -f\n";
  for (const DeclaredCommand& command : commands) {
    if (command.name.empty()) {
      AddFishOptions(command, " -n '__fish_use_subcommand'", script);
      continue;
    }
    script += fmt::format("complete -c quenlar -n '__fish_use_subcommand' -a {} -d {}\n", command.name,
                          FishQuoted(command.help));
    AddFishOptions(command, fmt::format(" -n '__fish_seen_subcommand_from {}'", command.name), script);
  }
  return script;
}

}  // namespace quenlar
