// quenlar merge: merges address books into one list without duplicates.
#include <CLI/CLI.hpp>
#include <fmt/format.h>

#include "cli/exit_status.h"
#include "cli/paths.h"
#include "cli/verbs.h"
#include "mailtool/email_book_merge.h"
#include "platform/event_loop.h"
#include "platform/files.h"

namespace quenlar {
namespace {

struct Arguments {
  std::vector<std::string> books;
  std::string output;
  bool force = false;
};

// Reads every book before anything is written, so the output may be one of them where --force allows it.
int MergeWith(Invocation& invocation, const Platform& platform, const Arguments& arguments) {
  const std::string output = AbsolutePath(arguments.output);
  if (platform.files.FolderExists(output)) {
    invocation.Say(output + " is a folder !");
    return kExitFailed;
  }
  if (!arguments.force && platform.files.FileExists(output)) {
    invocation.Say(FileTitleOf(output) + " file existed , --force overwrites it !");
    return kExitFailed;
  }
  int status = kExitDone;
  const auto failed = [&](const std::string& message) {
    invocation.Say(message);
    status = kExitFailed;
  };
  eMailBookMerge merge;
  for (const std::string& book : arguments.books) {
    if (const Result<bool> added = merge.AddBook(AbsolutePath(book)); !added.ok()) failed(added.status().message());
  }
  for (const std::string& message : merge.Extract(platform.files, platform.code_page, platform.loop)) failed(message);
  if (merge.Addresses.Count() == 0) {
    failed("No valid Email address are available !");
    return status;
  }
  const Status saved = merge.Save(platform.files, platform.code_page, output);
  if (!saved.ok()) failed(saved.message() + " !");
  return status;
}

int Merge(Invocation& invocation, const Arguments& arguments) {
  const Result<Platform> platform = invocation.system().Open(invocation.choice());
  if (platform.ok()) return MergeWith(invocation, platform.value(), arguments);
  invocation.Say(platform.status().message() + " !");
  return kExitFailed;
}

}  // namespace

void DeclareMerge(CLI::App& root, Command& chosen) {
  const auto arguments = std::make_shared<Arguments>();
  CLI::App* verb = root.add_subcommand("merge", "Merge address books into one list without duplicates");
  verb->add_option("BOOK", arguments->books, "An address book: any text file, also a report")
      ->type_name("")
      ->required();
  verb->add_option("-o,--output", arguments->output, "Where the merged list goes")->type_name("FILE")->required();
  verb->add_flag("-f,--force", arguments->force, "Replace an existing file, which may be one of the books");
  verb->footer(
      "Addresses keep the order and the spelling of their first occurrence; case makes no difference. A book that\n"
      "cannot be read is passed over with a message, and the exit status is 1; the others are merged all the same.\n"
      "Nothing is written when no address is found.\n\n"
      "Examples:\n"
      "  quenlar merge customers.txt report/gardening_en.rpt --output all.txt\n"
      "  quenlar merge all.txt new.txt --output all.txt --force");
  verb->callback(
      [&chosen, arguments] { chosen = [arguments](Invocation& invocation) { return Merge(invocation, *arguments); }; });
}

}  // namespace quenlar
