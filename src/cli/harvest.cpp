// quenlar harvest: the addresses in archives, files and folders.
#include "cli/commands.h"
#include "cli/harvest_run.h"
#include "cli/option_checks.h"
#include "cli/paths.h"
#include "platform/files.h"

namespace quenlar {

int HarvestInputs(Invocation& invocation, const HarvestArguments& arguments) {
  HarvestOptions options = arguments.options;
  options.format = FormatOf(arguments.format);
  options.obey_robots = arguments.robots != "ignore";
  options.remove_words = TidyWords(options.remove_words);
  options.extract_words = TidyWords(options.extract_words);
  const HarvestResult result = RunHarvest(invocation, options);
  if (arguments.summary.empty()) return result.status;
  const Result<Platform> platform = invocation.system().Open(invocation.choice());
  if (!platform.ok()) return result.status;
  const Status written = WriteWhole(platform.value().files, AbsolutePath(arguments.summary), SummaryText(result));
  return written.ok() ? result.status : invocation.Fail(written);
}

}  // namespace quenlar
