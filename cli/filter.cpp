// quenlar filter: shows and replaces the words that addresses are filtered by.
#include <algorithm>

#include <CLI/CLI.hpp>
#include <fmt/format.h>

#include "app/home.h"
#include "base/ascii.h"
#include "cli/exit_status.h"
#include "cli/verbs.h"
#include "cli/workplace.h"
#include "settings/filter_file.h"

namespace quenlar {
namespace {

struct Arguments {
  std::optional<std::vector<std::string>> remove, extract;
};

void Tell(Invocation& invocation, const std::vector<std::string>& messages) {
  for (const std::string& message : messages) invocation.Say(message);
}

// As the options dialog tidies its boxes: trimmed, without empty and repeated words.
std::vector<std::string> Tidy(const std::vector<std::string>& words) {
  std::vector<std::string> tidy;
  for (const std::string& word : words) {
    const std::string trimmed(TrimBlanks(word));
    if (!trimmed.empty() && std::find(tidy.begin(), tidy.end(), trimmed) == tidy.end()) tidy.push_back(trimmed);
  }
  return tidy;
}

// A word has one line of the filter file to itself, between its two tags.
bool CanBeStored(const std::string& word) {
  return word.find_first_of("\r\n") == std::string::npos && !ContainsIgnoreCase(word, "</r>") &&
         !ContainsIgnoreCase(word, "</e>");
}

bool CanBeStored(const std::optional<std::vector<std::string>>& words) {
  return !words || std::all_of(words->begin(), words->end(), [](const auto& word) { return CanBeStored(word); });
}

int Show(Invocation& invocation) {
  const Result<Platform> platform = invocation.system().Open(invocation.choice());
  if (!platform.ok()) {
    invocation.Say(platform.status().message() + " !");
    return kExitFailed;
  }
  const Settings settings;
  FilterWords words(settings);
  const Platform& p = platform.value();
  Tell(invocation, ReadFilterFile(p.files, p.code_page, FilterFilePath(invocation.site()), words));
  for (const std::string& word : words.RemoveFilterWords) {
    if (!invocation.Print("remove\t" + word)) return kExitDone;
  }
  for (const std::string& word : words.ExtractFilterWords) {
    if (!invocation.Print("extract\t" + word)) return kExitDone;
  }
  return kExitDone;
}

int Replace(Invocation& invocation, const Arguments& arguments) {
  if (!CanBeStored(arguments.remove) || !CanBeStored(arguments.extract)) {
    invocation.Say("A filter word is one line, and holds no </r> or </e> !");
    return kExitUsage;
  }
  const Result<Workplace> place = TakeWorkplace(invocation);
  if (!place.ok()) {
    invocation.Say(place.status().message() + " !");
    return kExitFailed;
  }
  const auto& [platform, site, lock] = place.value();
  const std::string path = FilterFilePath(site);
  const Settings settings;
  FilterWords words(settings);
  (void)ReadFilterFile(platform.files, platform.code_page, path, words);  // what is wrong with it is told below
  if (arguments.remove) words.RemoveFilterWords = Tidy(*arguments.remove);
  if (arguments.extract) words.ExtractFilterWords = Tidy(*arguments.extract);
  Status written = MakeFolders(platform.files, site.program_folder + site.separator + "data", site.separator);
  if (written.ok()) written = WriteFilterFile(platform.files, platform.code_page, path, words);
  if (!written.ok()) {
    invocation.Say(written.message() + " !");
    return kExitFailed;
  }
  Tell(invocation, words.BuildFilterPatterns());
  return kExitDone;
}

CLI::Option* DeclareWords(CLI::App& verb, const std::string& name, std::optional<std::vector<std::string>>& words,
                          const std::string& help) {
  constexpr int kMostWords = 32767;
  const auto take = [&words](const CLI::results_t& given) {
    words = given == CLI::results_t{"{}"} || given == CLI::results_t{""} ? CLI::results_t{} : given;
    return true;
  };
  return verb.add_option(name, take, help)->type_name("WORD ...")->expected(0, kMostWords)->allow_extra_args(false);
}

}  // namespace

void DeclareFilter(CLI::App& root, Command& chosen) {
  const auto arguments = std::make_shared<Arguments>();
  CLI::App* verb = root.add_subcommand("filter", "Show or replace the words that addresses are filtered by");
  DeclareWords(*verb, "--remove", arguments->remove,
               "Drop addresses in which one of these words occurs; no word empties the list");
  DeclareWords(*verb, "--extract", arguments->extract,
               "Keep only addresses in which one of these words occurs; no word empties the list");
  verb->footer(
      "A word is a regular expression; \"*\" stands for anything. The filters work where the settings RemoveFilter "
      "and\n"
      "ExtractFilter are 1. Each line shown is \"remove\" or \"extract\", a tab, and the word.\n\n"
      "Examples:\n"
      "  quenlar filter\n"
      "  quenlar filter --remove noreply example\\\\.com --extract sales\n"
      "  quenlar filter --remove");
  verb->callback([&chosen, arguments] {
    chosen = [arguments](Invocation& invocation) {
      return arguments->remove || arguments->extract ? Replace(invocation, *arguments) : Show(invocation);
    };
  });
}

}  // namespace quenlar
