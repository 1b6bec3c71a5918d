// quenlar harvest: the addresses in archives, files and folders.
#include "cli/commands.h"
#include "cli/harvest_run.h"
#include "cli/option_checks.h"

namespace quenlar {

int HarvestInputs(Invocation& invocation, const HarvestArguments& arguments) {
  HarvestOptions options = arguments.options;
  options.format = FormatOf(arguments.format);
  options.obey_robots = arguments.robots != "ignore";
  options.remove_words = TidyWords(options.remove_words);
  options.extract_words = TidyWords(options.extract_words);
  return RunHarvest(invocation, options);
}

}  // namespace quenlar
