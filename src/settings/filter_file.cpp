#include "settings/filter_file.h"

#include <cstdint>

#include "base/ascii.h"
#include "base/product.h"

namespace quenlar {
namespace {

constexpr std::uint64_t kMaxFileBytes = 1u << 30;
constexpr std::size_t kMaxWritten = 32768;  // words that a writer can count with a 16-bit signed index

void AddLines(std::string& text, const char* opening, const std::vector<std::string>& words, const char* closing) {
  for (const std::string& word : words) text.append(opening).append(word).append(closing).append("\r\n");
}

// Every text between an opening tag and the next closing tag, tags in either letter case.
void CollectTagged(std::string_view text, std::string_view opening, std::string_view closing,
                   std::vector<std::string>& words) {
  for (std::size_t at = 0;;) {
    const std::size_t begin = FindIgnoreCase(text, opening, at);
    if (begin == std::string_view::npos) return;
    const std::size_t from = begin + opening.size();
    const std::size_t end = FindIgnoreCase(text, closing, from);
    if (end == std::string_view::npos) return;
    words.emplace_back(text.substr(from, end - from));
    at = end + closing.size();
  }
}

}  // namespace

std::string FilterFilePath(const Installation& installation) { return installation.Data("ExtractFilter.dat"); }

Status WriteFilterFile(Files& files, const CodePage& code_page, const std::string& path, FilterWords& words) {
  if (words.RemoveFilterWords.size() > kMaxWritten || words.ExtractFilterWords.size() > kMaxWritten) {
    return {StatusKind::kLimit, "Overflow !"};
  }
  std::string text = std::string(kProductName) + ", " + kHomePage + "\r\n\r\n";
  AddLines(text, "<r>", words.RemoveFilterWords, "</r>");
  AddLines(text, "<e>", words.ExtractFilterWords, "</e>");
  std::string kept;
  if (words.keep_old_file) {
    auto aside = KeepAside(files, path);
    if (!aside.ok()) return aside.status();
    kept = aside.take();
  }
  const Status written = WriteWhole(files, path, code_page.FromUtf8(std::move(text)));
  if (written.ok()) {
    words.keep_old_file = false;
  } else if (!kept.empty()) {
    files.Rename(kept, path).Ignore("the file is whole under its other name");
  }
  return written;
}

std::vector<std::string> ReadFilterFile(const Files& files, const CodePage& code_page, const std::string& path,
                                        FilterWords& words) {
  if (!files.FileExists(path) && !files.FolderExists(path)) return {};
  auto bytes = ReadWhole(files, path, kMaxFileBytes);
  words.keep_old_file = !bytes.ok();
  if (!bytes.ok()) return {"The filter words cannot be read: " + bytes.status().message() + " !"};
  const std::string text = code_page.ToUtf8(bytes.take());
  CollectTagged(text, "<r>", "</r>", words.RemoveFilterWords);
  CollectTagged(text, "<e>", "</e>", words.ExtractFilterWords);
  return words.BuildFilterPatterns();
}

}  // namespace quenlar
