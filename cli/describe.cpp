// quenlar describe: writes the man page and the shells' completion, from the declarations. Not shown in the help.
#include <CLI/CLI.hpp>

#include "cli/declarations.h"
#include "cli/exit_status.h"
#include "cli/option_checks.h"
#include "cli/verbs.h"

namespace quenlar {

void DeclareDescribe(CLI::App& root, Command& chosen) {
  const auto what = std::make_shared<std::string>();
  CLI::App* verb = root.add_subcommand("describe", "Write the man page or a shell's completion")->group("");
  DeclareChoice(*verb, "WHAT", *what, {"man", "bash", "zsh", "fish"}, "What to write");
  verb->get_option("WHAT")->required();
  verb->callback([&chosen, &root, what] {
    chosen = [&root, what](Invocation& invocation) {
      const std::vector<DeclaredCommand> commands = Declarations(root);
      const std::string text = *what == "man"    ? ManPage(commands)
                               : *what == "bash" ? BashCompletion(commands)
                               : *what == "zsh"  ? ZshCompletion(commands)
                                                 : FishCompletion(commands);
      return invocation.console().Write(text) ? kExitDone : kExitFailed;
    };
  });
}

}  // namespace quenlar
