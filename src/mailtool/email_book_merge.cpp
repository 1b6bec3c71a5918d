#include "mailtool/email_book_merge.h"

#include <array>
#include <deque>
#include <new>
#include <unordered_map>
#include <utility>

#include "base/ascii.h"
#include "base/text_hash.h"
#include "base/windows1252.h"
#include "mailtool/book_scanner.h"
#include "platform/index_table.h"
#include "web/address_scan.h"

namespace quenlar {

std::string FileTitleOf(std::string_view path) { return std::string(path.substr(path.find_last_of("\\/") + 1)); }

std::string Book::ShownText() const { return std::string(TrimBlanks(FileTitleOf(Path) + " " + Mark)); }

// --- The merged addresses ---

// Addresses are looked up in batches. First the processor is asked to load all their slots, then the texts in these
// slots, and only then are texts compared. So the waits for memory overlap. A batch ends with its call.
struct AddressList::Impl {
  static constexpr std::size_t kBatch = 32;
  struct Candidate {
    std::string_view text;
    std::uint32_t hash;
  };

  TextList texts;
  IndexTable index;
  TextHash hash;
  AddressFilter* filter = nullptr;
  std::array<Candidate, kBatch> batch;
  std::size_t batched = 0;

  void Offer(std::string_view text) {
    const std::uint32_t value = hash.IgnoringCase(text);
    index.Prefetch(value);
    batch[batched++] = {text, value};
    if (batched == kBatch) Flush();
  }

  void Flush() {
    const std::size_t count = std::exchange(batched, 0);
    for (std::size_t i = 0; i < count; ++i) {
      if (const auto guess = index.FirstGuess(batch[i].hash)) texts.Prefetch(*guess);
    }
    for (std::size_t i = 0; i < count; ++i) AddIfNew(batch[i]);
  }

  void AddIfNew(const Candidate& candidate) {
    const auto equal = [&](TextList::Place at) { return EqualsIgnoreCase(texts.At(at), candidate.text); };
    if (index.Contains(candidate.hash, equal)) return;
    if (filter != nullptr && !filter->Keeps(candidate.text)) return;
    index.MakeRoom();
    index.Insert(candidate.hash, texts.Add(candidate.text));
  }
};

AddressList::AddressList() : impl_(std::make_unique<Impl>()) {}
AddressList::~AddressList() = default;

bool AddressList::AddMatchesToAddressList(std::string_view text) {
  const std::uint32_t before = Count();
  std::string_view match;
  for (std::size_t from = 0; !(match = NextAddress(text, from)).empty();) {
    impl_->Offer(match);
    from = static_cast<std::size_t>(match.data() - text.data()) + match.size();
  }
  impl_->Flush();
  return Count() != before;
}

std::uint32_t AddressList::Count() const { return impl_->texts.Count(); }

TextList::Iterator AddressList::begin() const { return impl_->texts.begin(); }
TextList::Iterator AddressList::end() const { return impl_->texts.end(); }

void AddressList::SetFilter(AddressFilter* filter) { impl_->filter = filter; }

void AddressList::Clear() {
  AddressFilter* const filter = impl_->filter;
  impl_ = std::make_unique<Impl>();
  impl_->filter = filter;
}

// --- The books ---

Result<bool> eMailBookMerge::AddBook(const std::string& path) {
  const std::string title = FileTitleOf(path);
  std::size_t same_title = 0;
  for (const Book& book : BookList) {
    if (EqualsIgnoreCase(book.Path, path)) return false;
    if (FileTitleOf(book.Path) == title) ++same_title;
  }
  if (BookList.size() >= kMaxListed) return Status(StatusKind::kLimit, "Overflow !");
  BookList.push_back({path, std::string(same_title, '*')});
  return true;
}

// After a deletion two books may show the same text. Each item then takes one of them, so no book is lost.
void eMailBookMerge::SyncBookListToListBox(const std::vector<std::string>& items) {
  const std::vector<Book> copy = BookList;
  std::unordered_map<std::string, std::deque<std::size_t>> shown;
  for (std::size_t i = 0; i < copy.size(); ++i) shown[copy[i].ShownText()].push_back(i);
  for (std::size_t i = 0; i < items.size() && i < BookList.size(); ++i) {
    const auto found = shown.find(items[i]);
    if (found == shown.end() || found->second.empty()) continue;
    BookList[i] = copy[found->second.front()];
    found->second.pop_front();
  }
}

std::vector<std::string> eMailBookMerge::Extract(const Files& files, const CodePage& code_page, EventLoop& loop) {
  std::vector<std::string> messages;
  try {
    for (std::size_t i = 0; i < BookList.size(); ++i) {
      const std::string path = BookList[i].Path;
      loop.Yield();  // code inside the pump may change the list
      BookScanner scanner([&](std::string_view piece) {
        if (IsAscii(piece)) {
          Addresses.AddMatchesToAddressList(piece);
        } else {
          Addresses.AddMatchesToAddressList(code_page.ToUtf8(std::string(piece)));
        }
      });
      const Status read = files.Read(path, [&](std::string_view block) {
        scanner.Feed(block);
        return true;
      });
      scanner.Finish();
      if (!read.ok()) messages.push_back(read.message() + " !");
    }
  } catch (const std::bad_alloc&) {
    messages.emplace_back("There is not enough memory for all addresses !");
  }
  return messages;
}

namespace {

// Collects the lines of the merged book and writes them in blocks.
class LineWriter {
 public:
  LineWriter(FileReplacement& file, const CodePage& code_page) : file_(file), code_page_(code_page) {}

  Status Add(std::string_view address) {
    if (kBlock - used_ < address.size() + kLineEnd.size()) {
      const Status written = Flush();
      if (!written.ok()) return written;
      if (kBlock < address.size() + kLineEnd.size()) return Write(std::string(address).append(kLineEnd));
    }
    used_ += address.copy(block_.get() + used_, address.size());
    used_ += kLineEnd.copy(block_.get() + used_, kLineEnd.size());
    return Status::Ok();
  }
  Status Flush() { return Write({block_.get(), std::exchange(used_, 0)}); }

 private:
  static constexpr std::size_t kBlock = std::size_t{64} << 10;
  static constexpr std::string_view kLineEnd = " \r\n";

  Status Write(std::string_view lines) {
    return file_.Write(IsAscii(lines) ? lines : code_page_.FromUtf8(std::string(lines)));
  }

  FileReplacement& file_;
  const CodePage& code_page_;
  std::unique_ptr<char[]> block_ = std::make_unique_for_overwrite<char[]>(kBlock);
  std::size_t used_ = 0;
};

}  // namespace

Status eMailBookMerge::Save(Files& files, const CodePage& code_page, const std::string& path) const {
  Result<std::unique_ptr<FileReplacement>> opened = files.Replace(path);
  if (!opened.ok()) return opened.status();
  FileReplacement& file = *opened.value();
  LineWriter writer(file, code_page);
  for (const std::string_view address : Addresses) {
    const Status written = writer.Add(address);
    if (!written.ok()) return written;
  }
  const Status written = writer.Flush();
  if (!written.ok()) return written;
  return file.Commit();
}

}  // namespace quenlar
