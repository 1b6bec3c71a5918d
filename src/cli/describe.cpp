// quenlar describe: writes the man page and the shells' completion, from the declarations. Not shown in the help.
#include "cli/commands.h"
#include "cli/declarations.h"
#include "cli/exit_status.h"

namespace quenlar {

int DescribeAs(Invocation& invocation, const CLI::App& root, const std::string& what) {
  const std::vector<DeclaredCommand> commands = Declarations(root);
  const std::string text = what == "man"    ? ManPage(commands)
                           : what == "bash" ? BashCompletion(commands)
                           : what == "zsh"  ? ZshCompletion(commands)
                                            : FishCompletion(commands);
  (void)invocation.console().Write(text);  // a reader may be gone
  return kExitDone;
}

}  // namespace quenlar
