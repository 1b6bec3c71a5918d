#include "cli/command_line.h"

#include <algorithm>
#include <exception>
#include <new>
#include <utility>

#include <CLI/CLI.hpp>

#include "base/product.h"
#include "cli/exit_status.h"
#include "cli/option_checks.h"
#include "cli/paths.h"
#include "cli/terminal_text.h"

namespace quenlar {
namespace {

constexpr const char* kHomeVariable = "QUENLAR_HOME";

std::string VersionText() { return std::string("quenlar ") + kProductVersion; }

// Help, version and mistakes; `error` is CLI11's way to tell them apart.
int TellParseOutcome(Console& console, const CLI::App& root, const CLI::ParseError& error) {
  const CLI::App* app = &root;
  while (!app->get_subcommands().empty()) app = app->get_subcommands().front();
  const bool help = error.get_name() == "CallForHelp";
  if (help || error.get_name() == "CallForVersion") {
    (void)console.Write(help ? root.help() : VersionText() + "\n");  // a reader may be gone
    return kExitDone;
  }
  const std::string command = app == &root ? "quenlar" : "quenlar " + app->get_name();
  // Of a word that names no command CLI11 says only that a command is missing.
  const std::vector<std::string> unknown = app == &root ? root.remaining() : std::vector<std::string>();
  Invocation::SayOn(console, unknown.empty() ? std::string("quenlar: ") + error.what()
                                             : "quenlar: there is no command or option " + unknown.front());
  Invocation::SayOn(console, "Try: " + command + " --help");
  return kExitUsage;
}

// The program folder by --home, QUENLAR_HOME, or the system's habit.
PlatformChoice ChooseHome(const System& system, const std::string& home) {
  PlatformChoice choice;
  const std::string from_environment = home.empty() ? system.Environment(kHomeVariable).value_or("") : "";
  choice.home_given = !home.empty() || !from_environment.empty();
  choice.home = !home.empty()       ? AbsolutePath(home)
                : choice.home_given ? AbsolutePath(from_environment)
                                    : system.DefaultHome();
  return choice;
}

int RunChosen(System& system, const CommandLine& line) {
  Invocation invocation(system, ChooseHome(system, line.home));
  return line.chosen(invocation);
}

int ParseAndRun(System& system, std::vector<std::string> arguments) {
  Console& console = system.console();
  if (!std::all_of(arguments.begin(), arguments.end(), IsUtf8)) {
    Invocation::SayOn(console, "quenlar: the arguments must be UTF-8 text");
    return kExitUsage;
  }
  CommandLine line;
  try {
    std::reverse(arguments.begin(), arguments.end());  // CLI11 takes them from the back
    line.root->parse(arguments);
  } catch (const CLI::ParseError& error) {
    return TellParseOutcome(console, *line.root, error);
  }
  return RunChosen(system, line);
}

// Files are replaced in one step, so each is whole whatever happens.
int Run(System& system, std::vector<std::string> arguments) {
  try {
    return ParseAndRun(system, std::move(arguments));
  } catch (const std::bad_alloc&) {
    system.console().WriteError("quenlar: There is not enough memory !\n");  // in one piece, which takes none
  } catch (const std::exception& error) {
    Invocation::SayOn(system.console(), std::string("quenlar: ") + error.what());
  }
  return kExitFailed;
}

}  // namespace

CommandLine::CommandLine()
    : root(std::make_unique<CLI::App>("Quenlar collects e-mail addresses from the web.", "quenlar")) {
  root->allow_windows_style_options(false);
  root->require_subcommand(1);
  root->fallthrough();
  root->add_option("--home", home, "The program folder: data and report lie below it, settings in it")
      ->type_name("DIR")
      ->check(CheckNotEmpty);
  DeclareCommands(*root, chosen);
  root->set_version_flag("--version", VersionText(), "Print the version and exit");
  for (CLI::App* command : root->get_subcommands([](CLI::App*) { return true; })) {
    command->set_version_flag("--version", VersionText(), "Print the version and exit");
  }
  root->footer(
      "Without --home and QUENLAR_HOME the program folder is the program's own on Windows, and\n"
      "$XDG_DATA_HOME/quenlar (~/.local/share/quenlar) elsewhere. Results go to standard output, messages and\n"
      "progress to standard error. `quenlar COMMAND --help` tells more about a command.\n\n"
      "Examples:\n"
      "  quenlar demo\n"
      "  quenlar extract \"picture search\"\n"
      "  quenlar --home ~/addresses extract www.example.org");
}

CommandLine::~CommandLine() = default;

int RunCommandLine(System& system, std::vector<std::string> arguments) {
  const int status = Run(system, std::move(arguments));
  // A reader that goes away wants no more; results that a full disk has cut short are another matter.
  if (!system.console().OutputIsFull()) return status;
  Invocation::SayOn(system.console(), "quenlar: no space is left for the results");
  return kExitFailed;
}

}  // namespace quenlar
