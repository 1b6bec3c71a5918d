// quenlar extract: runs a project to its end and prints the addresses as they are found.
#include <map>

#include <CLI/CLI.hpp>
#include <fmt/format.h>

#include "base/number.h"
#include "cli/exit_status.h"
#include "cli/extract_run.h"
#include "cli/option_checks.h"
#include "cli/paths.h"
#include "cli/verbs.h"
#include "platform/files.h"

namespace quenlar {
namespace {

struct Arguments {
  ExtractOptions options;
  std::string format = "lines", language, save_interval, other_sites, export_mode;
  std::int32_t stop_number = 0;
  std::string search_engine, proxy, summary;
};

// The position of a word in a list of words; empty for the empty word (an option that was not given).
std::optional<std::int16_t> IndexOf(const std::string& word, std::initializer_list<const char*> words) {
  std::int16_t index = 0;
  for (const char* known : words) {
    if (word == known) return index;
    ++index;
  }
  return std::nullopt;
}

ExtractOptions OptionsOf(const Arguments& arguments) {
  ExtractOptions options = arguments.options;
  options.format = static_cast<AddressFormat>(*IndexOf(arguments.format, {"lines", "csv", "jsonl"}));
  options.language = IndexOf(arguments.language, {"en", "fr", "de", "it", "es", "ja"});
  options.save_interval = IndexOf(arguments.save_interval, {"30", "50", "100"});
  options.other_sites = IndexOf(arguments.other_sites, {"no", "yes"});
  options.export_mode = IndexOf(arguments.export_mode, {"addresses", "all"});
  if (arguments.stop_number != 0) options.stop_number = arguments.stop_number;
  return options;
}

ExtractResult RunIn(Invocation& invocation, const Arguments& arguments) {
  const auto refused = [&](const Status& why) {
    ExtractResult result;
    result.status = kExitFailed;
    result.reason = why.message() + " !";
    invocation.Say(result.reason);
    return result;
  };
  invocation.choice().proxy = arguments.proxy;
  Result<Workplace> place = TakeWorkplace(invocation);
  if (!place.ok()) return refused(place.status());
  if (!arguments.search_engine.empty()) place.value().site.search_engine = arguments.search_engine;
  return RunExtract(invocation.console(), place.value(), OptionsOf(arguments),
                    [&](std::function<void()> stop) { invocation.system().OnStop(std::move(stop)); });
}

int Extract(Invocation& invocation, const Arguments& arguments) {
  const ExtractResult result = RunIn(invocation, arguments);
  if (arguments.summary.empty()) return result.status;
  const Result<Platform> platform = invocation.system().Open(invocation.choice());
  if (!platform.ok()) return result.status;
  const Status written = WriteWhole(platform.value().files, AbsolutePath(arguments.summary), SummaryText(result));
  if (written.ok()) return result.status;
  invocation.Say(written.message() + " !");
  return kExitFailed;
}

void DeclareOverrides(CLI::App& verb, Arguments& arguments) {
  DeclareChoice(verb, "--language", arguments.language, {"en", "fr", "de", "it", "es", "ja"},
                "Language of the search, for a keyword");
  DeclareChoice(verb, "--save-interval", arguments.save_interval, {"30", "50", "100"},
                "Save the project after so many new addresses");
  verb.add_option("--stop-number", arguments.stop_number, "End the run after so many new addresses")
      ->type_name("N")
      ->check([](const std::string& value) {
        const double number = LeadingNumber(value);
        const bool digits = value.find_first_not_of("0123456789") == std::string::npos;
        return digits && number >= 1 && number <= 99999 ? "" : std::string("must be a number from 1 to 99999");
      });
  DeclareChoice(verb, "--other-sites", arguments.other_sites, {"yes", "no"},
                "Whether a run from an address follows links to other sites");
  DeclareChoice(verb, "--export", arguments.export_mode, {"addresses", "all"},
                "What the report holds: addresses alone, or all information");
  verb.add_option("--remove", arguments.options.remove_words,
                  "Drop addresses in which this word occurs (a regular expression; repeatable)")
      ->type_name("WORD")
      ->allow_extra_args(false);
  verb.add_option("--extract", arguments.options.extract_words,
                  "Keep only addresses in which such a word occurs (a regular expression; repeatable)")
      ->type_name("WORD")
      ->allow_extra_args(false);
}

}  // namespace

void DeclareExtract(CLI::App& root, Command& chosen) {
  const auto arguments = std::make_shared<Arguments>();
  CLI::App* verb = root.add_subcommand("extract", "Run the project of a keyword or an address to its end");
  verb->add_option("TEXT", arguments->options.text, "A keyword, or an address (a text with a dot)")
      ->type_name("")
      ->required();
  DeclareChoice(*verb, "--format", arguments->format, {"lines", "csv", "jsonl"},
                "How a new address is printed: the address alone; address, page, title and tag-only flag as csv; a "
                "JSON object");
  DeclareOverrides(*verb, *arguments);
  verb->add_option("--search-engine", arguments->search_engine, "Scheme and host (and port) of the search engine")
      ->type_name("URL")
      ->check(CheckHostUrl)
      ->transform(WithoutTrailingSlash);
  verb->add_option("--proxy", arguments->proxy, "HTTP proxy for every download instead of the system's own settings")
      ->type_name("URL")
      ->check(CheckProxyUrl);
  verb->add_flag("--assume-online", arguments->options.assume_online, "Do not ask the system whether it is on line");
  verb->add_option("--summary", arguments->summary, "Write one JSON object about the run to this file at its end")
      ->type_name("FILE");
  verb->footer(
      "Each new address is printed as it is found; the same command continues a project that was stopped. Ctrl-C ends\n"
      "the run in order, with everything saved; a second Ctrl-C ends it at once. Options hold for this run alone.\n"
      "Nothing but the pages of the run is downloaded.\n\n"
      "Exit status: 0 all links parsed or stop number reached, 1 no run or a file could not be saved (the message "
      "says\n"
      "why), 2 wrong usage, 3 off line, 130 stopped by a signal.\n\n"
      "Examples:\n"
      "  quenlar extract \"picture search\"\n"
      "  quenlar extract www.example.org --other-sites no --stop-number 100\n"
      "  quenlar extract gardening --language de --format jsonl --summary run.json");
  verb->callback([&chosen, arguments] {
    chosen = [arguments](Invocation& invocation) { return Extract(invocation, *arguments); };
  });
}

}  // namespace quenlar
