// quenlar suppress: shows and changes the list of addresses that are never to be listed.
#include <array>
#include <string>
#include <utility>
#include <vector>

#include <fmt/format.h>

#include "cli/commands.h"
#include "cli/exit_status.h"
#include "cli/load_suppression.h"
#include "cli/paths.h"
#include "cli/tell_erased.h"
#include "cli/workplace.h"
#include "engine/home.h"
#include "settings/suppression_file.h"

namespace quenlar {
namespace {

constexpr std::string_view kDigest = "sha256:";

int Show(Invocation& invocation, const Platform& platform) {
  const Result<SuppressionList> list = LoadSuppression(invocation, platform);
  if (!list.ok()) return invocation.Fail(list.status());
  for (const std::string_view entry : list.value().entries()) {
    if (!invocation.Print(entry)) break;
  }
  return kExitDone;
}

// False, after a message, where one of the texts is no entry.
bool TakeEntries(Invocation& invocation, const Idna& idna, const std::vector<std::string>& texts,
                 SuppressionList& list) {
  for (const std::string& text : texts) {
    const auto entry = SuppressionEntry(text, idna);
    if (!entry) {
      invocation.Say(text + " is neither an address nor @domain nor sha256: and a digest !");
      return false;
    }
    (void)list.Add(*entry);
  }
  return true;
}

Result<std::string> ReadImport(Invocation& invocation, const Files& files, const std::string& from) {
  if (from != "-") return ReadWhole(files, AbsolutePath(from));
  std::string text;
  std::array<char, 65536> block;
  while (const std::size_t size = invocation.console().Read(block.data(), block.size()))
    text.append(block.data(), size);
  return text;
}

int Add(Invocation& invocation, const Platform& platform, const SuppressArguments& arguments) {
  SuppressionList given;
  if (!TakeEntries(invocation, platform.idna, arguments.entries, given)) return kExitUsage;
  int status = kExitDone;
  if (!arguments.import.empty()) {
    const Result<std::string> text = ReadImport(invocation, platform.files, arguments.import);
    if (!text.ok()) return invocation.Fail(text.status());
    const std::string message = AddSuppressionLines(text.value(), arguments.import, platform.idna, given);
    if (!message.empty()) {
      invocation.Say(message);
      status = kExitFailed;
    }
  }
  const Installation installation = invocation.installation();
  const Status made = MakeFolders(platform.files, installation.program_folder, installation.separator);
  if (!made.ok()) return invocation.Fail(made);
  const auto changed = ChangeSuppressionFile(platform.files, platform.idna, installation, given.entries(), DropLine());
  if (!changed.ok()) return invocation.Fail(changed.status());
  invocation.Say(
      fmt::format("Added to the suppression list: {} of {}.", changed.value().added, given.entries().size()));
  if (given.empty()) return status;
  const std::string subject = given.entries().size() == 1 ? std::string(given.entries().front()) : "What is stored";
  const int erased = EraseAndTell(invocation, platform, given, subject);
  return erased == kExitDone ? status : erased;
}

// An address is taken off the list by its digest too, if that is what the list has of it.
int Remove(Invocation& invocation, const Platform& platform, const std::vector<std::string>& texts) {
  SuppressionList given;
  if (!TakeEntries(invocation, platform.idna, texts, given)) return kExitUsage;
  const Result<SuppressionList> stored = LoadSuppression(invocation, platform);
  if (!stored.ok()) return invocation.Fail(stored.status());
  SuppressionList wanted;
  int status = kExitDone;
  for (const std::string_view entry : given.entries()) {
    const bool is_address = entry.front() != '@' && !entry.starts_with(kDigest);
    const std::string digest = is_address ? DigestEntry(entry) : std::string(entry);
    if (!stored.value().Has(entry) && !stored.value().Has(digest)) {
      invocation.Say(std::string(entry) + " is not on the suppression list !");
      status = kExitFailed;
      continue;
    }
    (void)wanted.Add(entry);
    (void)wanted.Add(digest);
  }
  if (wanted.empty()) return status;
  const auto changed =
      ChangeSuppressionFile(platform.files, platform.idna, invocation.installation(), {},
                            [&](std::string_view, std::string_view entry) { return wanted.Has(entry); });
  if (!changed.ok()) return invocation.Fail(changed.status());
  return status;
}

}  // namespace

int Suppress(Invocation& invocation, const SuppressArguments& arguments) {
  const Result<Platform> platform = OpenHome(invocation);
  if (!platform.ok()) return invocation.Fail(platform.status());
  if (!arguments.remove.empty()) return Remove(invocation, platform.value(), arguments.remove);
  if (!arguments.entries.empty() || !arguments.import.empty()) return Add(invocation, platform.value(), arguments);
  return Show(invocation, platform.value());
}

}  // namespace quenlar
