// quenlar extract: runs a project to its end and prints the addresses as they are found.
#include "base/status.h"
#include "cli/commands.h"
#include "cli/exit_status.h"
#include "cli/option_checks.h"
#include "cli/paths.h"
#include "platform/files.h"

namespace quenlar {
namespace {

ExtractOptions OptionsOf(const ExtractArguments& arguments) {
  ExtractOptions options = arguments.options;
  options.format = FormatOf(arguments.format);
  options.remove_words = TidyWords(options.remove_words);
  options.extract_words = TidyWords(options.extract_words);
  return options;
}

ExtractResult RunIn(Invocation& invocation, const ExtractArguments& arguments) {
  const auto refused = [&](const Status& why) {
    ExtractResult result;
    result.status = kExitFailed;
    result.reason = SentenceOf(why);
    invocation.Say(result.reason);
    return result;
  };
  invocation.choice().proxy = arguments.proxy;
  Result<Workplace> place = TakeWorkplace(invocation);
  if (!place.ok()) return refused(place.status());
  if (!arguments.search_engine.empty()) place.value().installation.search_engine = arguments.search_engine;
  return RunExtract(invocation.console(), place.value(), OptionsOf(arguments),
                    [&](std::function<void()> stop) { invocation.system().OnStop(std::move(stop)); });
}

}  // namespace

int Extract(Invocation& invocation, const ExtractArguments& arguments) {
  const ExtractResult result = RunIn(invocation, arguments);
  if (arguments.summary.empty()) return result.status;
  const Result<Platform> platform = invocation.system().Open(invocation.choice());
  if (!platform.ok()) return result.status;
  const Status written = WriteWhole(platform.value().files, AbsolutePath(arguments.summary), SummaryText(result));
  if (written.ok()) return result.status;
  return invocation.Fail(written);
}

}  // namespace quenlar
