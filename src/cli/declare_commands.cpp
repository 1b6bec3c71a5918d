#include "cli/declare_commands.h"

#include <algorithm>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <CLI/CLI.hpp>

#include "cli/commands.h"
#include "cli/declare.h"
#include "cli/option_checks.h"
#include "state/settings_table.h"

namespace quenlar {

void TakeOneOf(CLI::Option& option, const std::vector<std::string>& words) {
  std::string type;
  for (const std::string& word : words) type += (type.empty() ? "" : "|") + word;
  option.type_name(type)->check([words, type](const std::string& given) {
    return std::find(words.begin(), words.end(), given) != words.end() ? "" : "must be one of " + type;
  });
}

void DeclareChoice(CLI::App& command, const std::string& name, std::string& value,
                   const std::vector<std::string>& words, const std::string& help) {
  TakeOneOf(*command.add_option(name, value, help), words);
}

void DeclareFilterWords(CLI::App& command, std::vector<std::string>& remove, std::vector<std::string>& extract) {
  command.add_option("--remove", remove, "Drop addresses in which this word occurs (a regular expression; repeatable)")
      ->type_name("WORD")
      ->allow_extra_args(false);
  command
      .add_option("--extract", extract,
                  "Keep only addresses in which such a word occurs (a regular expression; repeatable)")
      ->type_name("WORD")
      ->allow_extra_args(false);
}

void DeclareNetwork(CLI::App& command, std::string& proxy, bool& assume_online) {
  command.add_option("--proxy", proxy, "HTTP proxy for every download instead of the system's own settings")
      ->type_name("URL")
      ->check(CheckProxyUrl);
  command.add_flag("--assume-online", assume_online, "Do not ask the system whether it is on line");
}

namespace {

// The option of a setting that is overridden for one run.
void DeclareOverride(CLI::App& command, const SettingRow& row, std::vector<SettingChange>& overrides) {
  const auto& [name, help, words] = row.option;
  if (words.empty()) {
    const auto take = [&](std::int32_t number) { overrides.push_back({&row, std::to_string(number)}); };
    command.add_option_function<std::int32_t>(name, take, help)
        ->type_name("N")
        ->check([&row](const std::string& given) {
          return CheckNumber(given, static_cast<std::uint64_t>(row.lowest), static_cast<std::uint64_t>(row.highest));
        });
    return;
  }
  const auto take = [&](const std::string& given) {
    for (const auto& [word, value] : row.option.words) {
      if (given == word) overrides.push_back({&row, std::to_string(value)});
    }
  };
  std::vector<std::string> known;
  for (const ChoiceWord& word : words) known.push_back(word.word);
  TakeOneOf(*command.add_option_function<std::string>(name, take, help), known);
}

void DeclareOverrides(CLI::App& command, ExtractArguments& arguments) {
  for (const SettingRow& row : SettingsTable()) {
    if (row.option.name != nullptr) DeclareOverride(command, row, arguments.options.overrides);
  }
  DeclareFilterWords(command, arguments.options.remove_words, arguments.options.extract_words);
}

void DeclareExtract(CLI::App& root, Command& chosen) {
  const auto arguments = std::make_shared<ExtractArguments>();
  CLI::App* command = root.add_subcommand("extract", "Run the project of a keyword or an address to its end");
  command->add_option("TEXT", arguments->options.text, "A keyword, or an address (a text with a dot)")
      ->type_name("")
      ->required()
      ->check(CheckOneLine);
  DeclareChoice(*command, "--format", arguments->format, {"lines", "csv", "jsonl"},
                "How a new address is printed: the address alone; address, page, title and tag-only flag as csv; a "
                "JSON object");
  DeclareOverrides(*command, *arguments);
  command->add_option("--search-engine", arguments->search_engine, "Scheme and host (and port) of the search engine")
      ->type_name("URL")
      ->check(CheckHostUrl)
      ->transform(WithoutTrailingSlash);
  DeclareNetwork(*command, arguments->proxy, arguments->options.assume_online);
  command->add_option("--summary", arguments->summary, "Write one JSON object about the run to this file at its end")
      ->type_name("FILE")
      ->check(CheckNotEmpty);
  command->footer(
      R"(Each new address is printed as it is found; the same command continues a project that was stopped. Ctrl-C ends
the run in order, with everything saved; a second Ctrl-C ends it at once. Options hold for this run alone.
Nothing but the pages of the run is downloaded.

Exit status: 0 all links parsed or stop number reached, 1 no run or a file could not be saved (the message says
why), 2 wrong usage, 3 off line, 130 stopped by a signal.

Examples:
  quenlar extract "picture search"
  quenlar extract www.example.org --other-sites no --stop-number 100
  quenlar extract gardening --language de --format jsonl --summary run.json)");
  Choose(*command, chosen, Extract, arguments);
}

void DeclareAnalyze(CLI::App& root, Command& chosen) {
  CLI::App* command = root.add_subcommand("analyze", "Answer requests on standard input with page analysis");
  command->add_flag("--jsonl")->description("One JSON object a line, in and out")->required();
  command->footer(
      R"(Each line of standard input is a request, each line of standard output its answer. Pages are analysed as in a
run, but nothing is downloaded, and nothing is written before a project is opened. docs/analyze.md lists the
requests.

Examples:
  echo '{"name":"M1http://a.example","text":"<p>me@a.test</p>"}' | quenlar analyze --jsonl
  echo '{"resolve":"../x.html","page":"http://a.example/b/c.html"}' | quenlar analyze --jsonl)");
  command->callback([&chosen] { chosen = Analyze; });
}

void DeclareProjects(CLI::App& root, Command& chosen) {
  CLI::App* command = root.add_subcommand("projects", "List the projects, newest first");
  command->footer(R"(One project a line, as `extract`, `report` and `delete` take it.

Examples:
  quenlar projects
  quenlar projects | head -1)");
  command->callback([&chosen] { chosen = Projects; });
}

void DeclareDelete(CLI::App& root, Command& chosen) {
  const auto arguments = std::make_shared<DeleteArguments>();
  CLI::App* command = root.add_subcommand("delete", "Delete a project with its files");
  command->add_option("TEXT", arguments->text, "The project, as `quenlar projects` lists it")
      ->type_name("")
      ->required();
  command->add_flag("-y,--yes", arguments->yes, "Do not ask");
  command->footer(
      R"(Asks on the terminal, and deletes nothing unless the answer is yes. A keyword without its language is taken in
that of the setting Search. A project that has files but stands nowhere in the list takes the oldest entry of
the list with it; that entry's files stay.

Examples:
  quenlar delete gardening_en
  quenlar delete --yes www.example.org)");
  Choose(*command, chosen, Delete, arguments);
}

void DeclareReport(CLI::App& root, Command& chosen) {
  const auto text = std::make_shared<std::string>();
  CLI::App* command = root.add_subcommand("report", "Rewrite a project's report and print its path");
  command->add_option("TEXT", *text, "The project, as `quenlar projects` lists it")->type_name("")->required();
  command->footer(R"help(The report holds the addresses alone or all information, as the setting Export says.

Examples:
  quenlar report www.example.org
  less "$(quenlar report gardening_en)")help");
  Choose(*command, chosen, Report, text);
}

void DeclareMerge(CLI::App& root, Command& chosen) {
  const auto arguments = std::make_shared<MergeArguments>();
  CLI::App* command = root.add_subcommand("merge", "Merge address books into one list without duplicates");
  command->add_option("BOOK", arguments->books, "An address book: any text file, also a report")
      ->type_name("")
      ->required();
  command->add_option("-o,--output", arguments->output, "Where the merged list goes")->type_name("FILE")->required();
  command->add_flag("-f,--force", arguments->force, "Replace an existing file, which may be one of the books");
  command->footer(
      R"(Addresses keep the order and the spelling of their first occurrence; case makes no difference. A book that
cannot be read is passed over with a message, and the exit status is 1; the others are merged all the same.
Nothing is written when no address is found.

Examples:
  quenlar merge customers.txt report/gardening_en.rpt --output all.txt
  quenlar merge all.txt new.txt --output all.txt --force)");
  Choose(*command, chosen, Merge, arguments);
}

void DeclareOptions(CLI::App& root, Command& chosen) {
  const auto arguments = std::make_shared<OptionsArguments>();
  CLI::App* command = root.add_subcommand("options", "List, show or set the stored settings");
  command->add_option("NAME", arguments->name, "A setting, by its registry value name; without it all are listed")
      ->type_name("");
  command->add_option("VALUE", arguments->value, "Its new value, a number")->type_name("");
  command->footer(
      R"(A list has the name, the value and the meaning of each setting; one setting is shown by its value alone.

Examples:
  quenlar options
  quenlar options StopNumber
  quenlar options Search 2)");
  Choose(*command, chosen, Options, arguments);
}

// An option that takes any number of words, also none.
void DeclareWords(CLI::App& command, const std::string& name, std::optional<std::vector<std::string>>& words,
                  const std::string& help) {
  const auto take = [&words](const CLI::results_t& given) {
    words = given == CLI::results_t{"{}"} || given == CLI::results_t{""} ? CLI::results_t{} : given;
    return true;
  };
  command.add_option(name, take, help)->type_name("WORD ...")->expected(0, kMostWords)->allow_extra_args(false);
}

void DeclareFilter(CLI::App& root, Command& chosen) {
  const auto arguments = std::make_shared<FilterArguments>();
  CLI::App* command = root.add_subcommand("filter", "Show or replace the words that addresses are filtered by");
  DeclareWords(*command, "--remove", arguments->remove,
               "Drop addresses in which one of these words occurs; no word empties the list");
  DeclareWords(*command, "--extract", arguments->extract,
               "Keep only addresses in which one of these words occurs; no word empties the list");
  command->footer(
      R"(A word is a regular expression; "*" stands for anything. The filters work where the settings RemoveFilter and
ExtractFilter are 1. Each line shown is "remove" or "extract", a tab, and the word.

Examples:
  quenlar filter
  quenlar filter --remove noreply example\\.com --extract sales
  quenlar filter --remove)");
  Choose(*command, chosen, Filter, arguments);
}

void DeclareNet(CLI::App& root, Command& chosen) {
  const auto watch = std::make_shared<bool>(false);
  CLI::App* command = root.add_subcommand("net", "Show the network interfaces and the traffic");
  command->add_flag("-w,--watch", *watch, "The rate instead of the table, a line every 500 ms, until Ctrl-C");
  command->footer(
      R"(Received and Sent are the octets that each interface has counted; the rate is in kilobytes received per half
second, all interfaces together, and is called Kbps as in the window.

Examples:
  quenlar net
  quenlar net --watch)");
  Choose(*command, chosen, Net, watch);
}

void DeclareDemo(CLI::App& root, Command& chosen) {
  CLI::App* command = root.add_subcommand("demo", "Run over a small web on this computer");
  command->footer(
      R"(Serves a search engine and a few invented sites on a loopback port, runs a keyword and an address over them,
prints the addresses, collects from a library's site and says where everything lies. On Linux that site is served
over https, with a certificate authority that is made for the occasion and trusted by this run alone; on Windows,
where the system's authorities alone are trusted, over http. Without --home it works in a new folder below the
system's folder for temporary files.

Examples:
  quenlar demo
  quenlar --home demo-folder demo)");
  command->callback([&chosen] { chosen = Demo; });
}

void DeclareDescribe(CLI::App& root, Command& chosen) {
  const auto what = std::make_shared<std::string>();
  CLI::App* command = root.add_subcommand("describe", "Write the man page or a shell's completion")->group("");
  DeclareChoice(*command, "WHAT", *what, {"man", "bash", "zsh", "fish"}, "What to write");
  command->get_option("WHAT")->required();
  command->callback([&chosen, &root, what] {
    chosen = [&root, what](Invocation& invocation) { return DescribeAs(invocation, root, *what); };
  });
}

}  // namespace

void DeclareCommands(CLI::App& root, Command& chosen) {
  for (const auto declare :
       {DeclareCollectionCommands, DeclareExtract, DeclareAnalyze, DeclareProjects, DeclareDelete, DeclareReport,
        DeclareMerge, DeclareOptions, DeclareFilter, DeclareNet, DeclareDemo, DeclareDescribe}) {
    declare(root, chosen);
  }
}

}  // namespace quenlar
