#include "engine/never_list.h"

#include <utility>

#include "base/number.h"
#include "engine/erase.h"
#include "platform/files.h"
#include "settings/suppression_file.h"

namespace quenlar {

Status SuppressByDigest(Files& files, const Idna& idna, const Installation& installation,
                        const std::vector<std::string>& addresses) {
  SuppressionList only;
  std::vector<std::string> digests;
  for (const std::string& address : addresses) {
    (void)only.Add(address);
    digests.push_back(DigestEntry(address));
  }
  const std::vector<std::string_view> add(digests.begin(), digests.end());
  const AddressTest keeps = [&](std::string_view other) { return !only.Has(other); };
  return ChangeSuppressionFile(files, idna, installation, add,
                               [&](std::string_view line, std::string_view entry) {
                                 return only.Has(entry) || NextUnwanted(line, keeps).has_value();
                               })
      .status();
}

std::string ErasedText(const std::string& subject, const EraseOutcome& outcome) {
  if (outcome.collections == 0 && outcome.files == 0) {
    return subject + (outcome.problems.empty() ? ": no collection and no report holds anything of it"
                                               : ": nothing has been taken out, but not everything could be looked at");
  }
  return subject + ": " + Counted(outcome.addresses.size(), "address", "es") + " taken out of " +
         Counted(outcome.collections, "collection") + " and " + Counted(outcome.files, "file") + " of projects";
}

Status NeverList::CheckIdle() const {
  if (!context_.run_goes_on()) return Status::Ok();
  return {StatusKind::kBusy, "A run goes on; what is never listed can be changed when it has ended"};
}

Result<std::vector<std::string>> NeverList::Entries() {
  const Engine& engine = context_.engine;
  std::vector<std::string> strange_lines;
  const Result<SuppressionList> list =
      LoadSuppressionList(engine.platform.files, engine.platform.idna, engine.installation, strange_lines);
  if (!list.ok()) return list.status();
  return std::vector<std::string>(list.value().entries().begin(), list.value().entries().end());
}

Result<std::vector<std::string>> NeverList::Add(std::string_view text) {
  const auto entry = SuppressionEntry(text, context_.engine.platform.idna);
  if (!entry) {
    return Status(StatusKind::kFormat,
                  std::string(text) + " is neither an address nor @ and a domain nor sha256: and a digest");
  }
  SuppressionList given;
  (void)given.Add(*entry);
  return AddAll(given, *entry);
}

Result<std::vector<std::string>> NeverList::Import(const std::string& path) {
  const Engine& engine = context_.engine;
  const Result<std::string> text = ReadWhole(engine.platform.files, path);
  if (!text.ok()) return text.status();
  SuppressionList given;
  const std::string message = AddSuppressionLines(text.value(), path, engine.platform.idna, given);
  auto added = AddAll(given, "What is stored");
  if (!added.ok() || message.empty()) return added;
  added.value().push_back(message.ends_with(" !") ? message.substr(0, message.size() - 2) : message);
  return added;
}

Result<std::vector<std::string>> NeverList::AddAll(const SuppressionList& given, const std::string& subject) {
  if (const Status idle = CheckIdle(); !idle.ok()) return idle;
  const Engine& engine = context_.engine;
  const auto changed = ChangeSuppressionFile(engine.platform.files, engine.platform.idna, engine.installation,
                                             given.entries(), DropLine());
  if (!changed.ok()) return changed.status();
  if (given.empty()) return std::vector<std::string>{"There is no entry in it"};
  return Erase(given, subject);
}

Result<std::vector<std::string>> NeverList::AddDigests(const std::vector<std::string>& addresses) {
  if (const Status idle = CheckIdle(); !idle.ok()) return idle;
  const Engine& engine = context_.engine;
  SuppressionList given;
  std::vector<std::string> entries;
  for (const std::string& address : addresses) {
    const auto entry = SuppressionEntry(address, engine.platform.idna);
    if (!entry) return Status(StatusKind::kFormat, address + " is not an e-mail address");
    if (given.Add(*entry)) entries.push_back(*entry);
  }
  const Status suppressed = SuppressByDigest(engine.platform.files, engine.platform.idna, engine.installation, entries);
  if (!suppressed.ok()) return suppressed;
  return Erase(given, entries.size() == 1 ? entries.front() : Counted(entries.size(), "address", "addresses"));
}

Result<std::vector<std::string>> NeverList::Erase(const SuppressionList& given, const std::string& subject) {
  Engine& engine = context_.engine;
  EraseOutcome outcome = EraseEverywhere(
      engine.platform.files, engine.installation, [&](std::string_view address) { return !given.EntryFor(address); },
      OtherWriters::kNone);
  std::vector<std::string> sentences = {ErasedText(subject, outcome)};
  for (std::string& problem : outcome.problems) sentences.push_back(std::move(problem));
  if (const Status read = engine.ReadSuppression(); !read.ok()) return read;
  if (context_.erased) context_.erased();
  return sentences;
}

Status NeverList::Remove(const std::vector<std::string>& entries) {
  if (const Status idle = CheckIdle(); !idle.ok()) return idle;
  Engine& engine = context_.engine;
  SuppressionList wanted;
  for (const std::string& entry : entries) (void)wanted.Add(entry);
  const auto changed =
      ChangeSuppressionFile(engine.platform.files, engine.platform.idna, engine.installation, {},
                            [&](std::string_view, std::string_view entry) { return wanted.Has(entry); });
  if (!changed.ok()) return changed.status();
  return engine.ReadSuppression();
}

}  // namespace quenlar
