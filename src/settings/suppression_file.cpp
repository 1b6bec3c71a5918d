#include "settings/suppression_file.h"

#include <cstdint>
#include <new>
#include <optional>

#include "base/number.h"

namespace quenlar {
namespace {

constexpr const char* kFileName = "suppressed.txt";
constexpr const char* kLockName = "suppressed.lock";
constexpr std::uint64_t kMostBytes = std::uint64_t{1} << 30;
constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
constexpr std::string_view kBlanks = " \t\r";

// What a line says, without blanks around it and without a comment.
std::string_view Said(std::string_view line) {
  const std::size_t begin = line.find_first_not_of(kBlanks);
  if (begin == std::string_view::npos || line[begin] == '#') return {};
  line.remove_prefix(begin);
  for (std::size_t at = line.find('#'); at != std::string_view::npos; at = line.find('#', at + 1)) {
    if (kBlanks.find(line[at - 1]) == std::string_view::npos) continue;  // it belongs to an address
    line = line.substr(0, at);
    break;
  }
  return line.substr(0, line.find_last_not_of(kBlanks) + 1);
}

// Calls `each` with every line, its line end left out, and with the number of the line from 1 on.
template <typename Each>
void ForEachLine(std::string_view text, Each each) {
  if (text.starts_with(kByteOrderMark)) text.remove_prefix(kByteOrderMark.size());
  for (std::size_t number = 1; !text.empty(); ++number) {
    const std::size_t end = text.find('\n');
    each(text.substr(0, end), number);
    text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
  }
}

// The text of the file, "" without one.
Result<std::string> ReadText(const Files& files, const std::string& path) {
  if (!files.FileExists(path) && !files.FolderExists(path)) return std::string();
  try {
    Result<std::string> text = ReadWhole(files, path, kMostBytes);
    if (!text.ok()) return text.status().WithContext("The suppression list cannot be read");
    if (text.value().find('\0') == std::string::npos) return text;
    return Status(StatusKind::kFormat, "The suppression list cannot be read: " + path + ": not a text in UTF-8");
  } catch (const std::bad_alloc&) {
    return Status(StatusKind::kFull, "The suppression list cannot be read: there is not enough memory");
  }
}

}  // namespace

std::string SuppressionPath(const Installation& installation) { return installation.Below(kFileName); }

std::string AddSuppressionLines(std::string_view text, const std::string& path, const Idna& idna,
                                SuppressionList& list) {
  std::size_t strange = 0, first = 0;
  ForEachLine(text, [&](std::string_view line, std::size_t number) {
    const std::string_view said = Said(line);
    if (said.empty()) return;
    if (const auto entry = SuppressionEntry(said, idna)) {
      (void)list.Add(*entry);
    } else if (strange++ == 0) {
      first = number;
    }
  });
  if (strange == 0) return {};
  const std::string are = strange == 1 ? " is" : " are";
  return path + ": " + Counted(strange, "line") + are + " neither an address nor a domain nor a digest (line " +
         std::to_string(first) + (strange == 1 ? ") !" : " is the first) !");
}

Result<SuppressionList> LoadSuppressionList(const Files& files, const Idna& idna, const Installation& installation,
                                            std::vector<std::string>& messages) {
  const std::string path = SuppressionPath(installation);
  const Result<std::string> text = ReadText(files, path);
  if (!text.ok()) return text.status();
  try {
    SuppressionList list;
    std::string message = AddSuppressionLines(text.value(), path, idna, list);
    if (!message.empty()) messages.push_back(std::move(message));
    return list;
  } catch (const std::bad_alloc&) {
    return Status(StatusKind::kFull, "The suppression list cannot be read: there is not enough memory");
  }
}

Result<SuppressionChange> ChangeSuppressionFile(Files& files, const Idna& idna, const Installation& installation,
                                                const std::vector<std::string_view>& add, const DropLine& drop) {
  const auto lock = files.Lock(installation.program_folder, kLockName);
  if (!lock.ok()) return lock.status().WithContext("The suppression list cannot be changed");
  const std::string path = SuppressionPath(installation);
  const Result<std::string> before = ReadText(files, path);
  if (!before.ok()) return before.status();
  SuppressionChange change;
  SuppressionList list;
  std::string after;
  ForEachLine(before.value(), [&](std::string_view line, std::size_t) {
    const std::string_view said = Said(line);
    const auto entry = said.empty() ? std::nullopt : SuppressionEntry(said, idna);
    if (drop && drop(line, entry ? *entry : std::string())) {
      ++change.removed;
      return;
    }
    if (entry) (void)list.Add(*entry);
    after.append(line).append("\n");
  });
  for (const std::string_view entry : add) {
    if (!list.Add(entry)) continue;
    ++change.added;
    after.append(entry).append("\n");
  }
  if (change.added == 0 && change.removed == 0) return change;
  const Status written = WriteWhole(files, path, after);
  if (!written.ok()) return written.WithContext("The suppression list cannot be changed");
  return change;
}

}  // namespace quenlar
