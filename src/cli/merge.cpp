// quenlar merge: merges address books into one list without duplicates.
#include <algorithm>

#include "base/status.h"
#include "cli/commands.h"
#include "cli/exit_status.h"
#include "cli/load_suppression.h"
#include "cli/paths.h"
#include "mailtool/email_book_merge.h"
#include "platform/event_loop.h"
#include "platform/files.h"

namespace quenlar {
namespace {

bool IsBookOf(const eMailBookMerge& merge, const std::string& path) {
  return std::any_of(merge.BookList.begin(), merge.BookList.end(), [&](const Book& book) { return book.Path == path; });
}

// Reads every book before anything is written, so the output may be one of them where --force allows it.
int MergeWith(Invocation& invocation, const Platform& platform, const MergeArguments& arguments) {
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
  Result<SuppressionList> suppression = LoadSuppression(invocation, platform);
  if (!suppression.ok()) return invocation.Fail(suppression.status());
  eMailBookMerge merge;
  merge.SetSuppression(&suppression.value());
  for (const std::string& argument : arguments.books) {
    const std::string book = AbsolutePath(argument);
    const Result<bool> added = merge.AddBook(book);
    if (!added.ok()) failed(added.status().message());
    // The engine takes paths that differ only in letter case for one book, as Windows does. Where "/" separates folders
    // they can be two files, so the user is told that the second one is not read.
    // Kept: MergeTest.SaysThatABookIsPassedOverWhoseNameDiffersInCaseAlone.
    if (added.ok() && !added.value() && invocation.system().separator() == '/' && !IsBookOf(merge, book)) {
      failed(argument + " is passed over, its name differs from another book's in case alone !");
    }
  }
  for (const std::string& message : merge.Extract(platform.files, platform.code_page, platform.loop)) failed(message);
  if (merge.Addresses.Count() == 0) {
    failed("No valid Email address are available !");
    return status;
  }
  const Status saved = merge.Save(platform.files, platform.code_page, output);
  if (!saved.ok()) failed(SentenceOf(saved));
  return status;
}

}  // namespace

int Merge(Invocation& invocation, const MergeArguments& arguments) {
  const Result<Platform> platform = invocation.system().Open(invocation.choice());
  if (platform.ok()) return MergeWith(invocation, platform.value(), arguments);
  return invocation.Fail(platform.status());
}

}  // namespace quenlar
