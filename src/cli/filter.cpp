// quenlar filter: shows and replaces the words that addresses are filtered by.
#include <algorithm>

#include "base/ascii.h"
#include "cli/commands.h"
#include "cli/exit_status.h"
#include "cli/option_checks.h"
#include "cli/workplace.h"
#include "engine/home.h"
#include "platform/code_page.h"
#include "settings/filter_file.h"

namespace quenlar {
namespace {

void Tell(Invocation& invocation, const std::vector<std::string>& messages) {
  for (const std::string& message : messages) invocation.Say(message);
}

// A word has one line of the filter file to itself, between its two tags, in the system's code page.
bool CanBeStored(const CodePage& code_page, const std::string& word) {
  return word.find_first_of("\r\n") == std::string::npos && !ContainsIgnoreCase(word, "</r>") &&
         !ContainsIgnoreCase(word, "</e>") && code_page.ToUtf8(code_page.FromUtf8(word)) == word;
}

bool CanBeStored(const CodePage& code_page, const std::optional<std::vector<std::string>>& words) {
  return !words || std::all_of(words->begin(), words->end(),
                               [&](const std::string& word) { return CanBeStored(code_page, word); });
}

int Show(Invocation& invocation) {
  const Result<Platform> platform = OpenHome(invocation);
  if (!platform.ok()) return invocation.Fail(platform.status());
  const Settings settings;
  FilterWords words(settings);
  const Platform& p = platform.value();
  Tell(invocation, ReadFilterFile(p.files, p.code_page, FilterFilePath(invocation.installation()), words));
  if (words.keep_old_file) return kExitFailed;  // it could not be read
  for (const std::string& word : words.RemoveFilterWords) {
    if (!invocation.Print("remove\t" + word)) return kExitDone;
  }
  for (const std::string& word : words.ExtractFilterWords) {
    if (!invocation.Print("extract\t" + word)) return kExitDone;
  }
  return kExitDone;
}

int Replace(Invocation& invocation, const FilterArguments& arguments) {
  const Result<Platform> opened = OpenHome(invocation);
  if (!opened.ok()) return invocation.Fail(opened.status());
  const CodePage& code_page = opened.value().code_page;
  if (!CanBeStored(code_page, arguments.remove) || !CanBeStored(code_page, arguments.extract)) {
    invocation.Say("A filter word is one line of characters of the system's code page, and holds no </r> or </e> !");
    return kExitUsage;
  }
  const Result<Workplace> place = TakeWorkplace(invocation);
  if (!place.ok()) return invocation.Fail(place.status());
  const auto& [platform, installation, lock] = place.value();
  const std::string path = FilterFilePath(installation);
  const Settings settings;
  FilterWords words(settings);
  (void)ReadFilterFile(platform.files, platform.code_page, path, words);  // what is wrong with it is told below
  if (arguments.remove) words.RemoveFilterWords = TidyWords(*arguments.remove);
  if (arguments.extract) words.ExtractFilterWords = TidyWords(*arguments.extract);
  Status written = MakeFolders(platform.files, installation.Data(), installation.separator);
  if (written.ok()) written = WriteFilterFile(platform.files, platform.code_page, path, words);
  if (!written.ok()) return invocation.Fail(written);
  Tell(invocation, words.BuildFilterPatterns());
  return kExitDone;
}

}  // namespace

int Filter(Invocation& invocation, const FilterArguments& arguments) {
  return arguments.remove || arguments.extract ? Replace(invocation, arguments) : Show(invocation);
}

}  // namespace quenlar
