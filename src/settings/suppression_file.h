// The file of the suppression list, suppressed.txt in the program folder.
//
//   # one entry a line; letter case makes no difference
//   anna@example.org            an address
//   @example.net                every address of this domain, not of domains below it
//   sha256:9f86d081884c7d65...  the digest of an address in lower case
#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "base/status.h"
#include "platform/files.h"
#include "platform/idna.h"
#include "settings/suppression_list.h"
#include "state/settings.h"

namespace quenlar {

[[nodiscard]] std::string SuppressionPath(const Installation& installation);

// Reads the list; without a file it is empty. A failure (the file cannot be read, or is not a text) means that nothing
// may be listed: nobody knows what is suppressed. A run must not start then. Lines that are no entry are passed over;
// `messages` receives one sentence about all of them. What lists addresses asks the list, as an AddressFilter, for
// each:
//
//   std::vector<std::string> messages;
//   Result<SuppressionList> suppression = LoadSuppressionList(files, idna, installation, messages);
//   if (!suppression.ok()) return suppression.status();
//   if (suppression.value().Keeps("anna@example.org")) List("anna@example.org");
[[nodiscard]] Result<SuppressionList> LoadSuppressionList(const Files& files, const Idna& idna,
                                                          const Installation& installation,
                                                          std::vector<std::string>& messages);

// Adds the entries of a text in the format of the file. Returns the message about lines that are no entry, or "".
// `path` names the text in it.
[[nodiscard]] std::string AddSuppressionLines(std::string_view text, const std::string& path, const Idna& idna,
                                              SuppressionList& list);

// What a change of the file has come to, in lines.
struct SuppressionChange {
  std::size_t added = 0, removed = 0;
};

// Takes out of the file the lines that `drop` names, and adds those entries of `add` that it does not hold. Other lines
// stay as they are. The file is replaced in one step, and left alone where nothing changes. Two programs may do so at
// the same time: the second fails with kBusy. `drop` is called with the line and its entry, "" for a comment.
using DropLine = std::function<bool(std::string_view line, std::string_view entry)>;
[[nodiscard]] Result<SuppressionChange> ChangeSuppressionFile(Files& files, const Idna& idna,
                                                              const Installation& installation,
                                                              const std::vector<std::string_view>& add,
                                                              const DropLine& drop);

}  // namespace quenlar
