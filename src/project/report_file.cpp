#include "project/report_file.h"

#include <algorithm>
#include <cstring>

#include "base/text_hash.h"
#include "platform/index_table.h"
#include "state/get_host.h"

namespace quenlar {
namespace {

constexpr std::size_t kGap = 5;  // blanks behind the longest entry of a column

// UTF-8 characters: one column each.
std::size_t Characters(std::string_view text) {
  return static_cast<std::size_t>(
      std::count_if(text.begin(), text.end(), [](char c) { return (static_cast<unsigned char>(c) & 0xC0) != 0x80; }));
}

// Finds out whether texts hold only printable ASCII. A byte is a character then, and no line ends inside a text.
class PlainTest {
 public:
  void Look(std::string_view text) {
    constexpr std::uint64_t kTops = 0x8080808080808080u, kBlanks = 0x2020202020202020u;
    std::size_t at = 0;
    for (; at + 8 <= text.size(); at += 8) {
      std::uint64_t word;
      std::memcpy(&word, text.data() + at, 8);
      // The subtraction leaves the top bit of a byte where its lower seven bits are 0x20 or more.
      odd_ |= (word | (((word | kTops) - kBlanks) ^ kTops)) & kTops;
    }
    for (; at < text.size(); ++at) {
      const auto byte = static_cast<unsigned char>(text[at]);
      odd_ |= static_cast<std::uint64_t>(byte < 0x20 || byte > 0x7F);
    }
  }
  [[nodiscard]] bool plain() const { return odd_ == 0; }

 private:
  std::uint64_t odd_ = 0;
};

class ReportWriter final : public RecordWriter {
 public:
  ReportWriter(const CodePage& code_page, std::unique_ptr<FileReplacement> file, const FoundAddresses& found,
               bool all_information)
      : RecordWriter(code_page, std::move(file)), found_(found), count_(found.Count()) {
    MeasureColumns();
    PutLine(HeaderLine());
    PutLine("");
    if (all_information) PutHeading("eMail address");
    for (std::uint32_t i = 0; i < count_; ++i) {
      const FoundAddress record = found_.At(i);
      if (!record.TagOnly) PutLine(record.Address);
    }
    if (!all_information) {
      part_ = Part::kEnd;
      return;
    }
    PutLine("");
    PutLine("");
    PutLine(std::string(RuleWidth(), '#'));
    PutPadded("#", number_width_);
    PutPadded("eMail address", address_width_);
    PutPadded("URL", url_width_);
    PutLine("Title");
    PutLine(std::string(RuleWidth(), '#'));
  }

 protected:
  bool Find() override {
    while (part_ != Part::kEnd) {
      while (next_ < count_ && next_ < found_.Count()) {
        record_ = next_++;
        if (IsPrinted(record_)) return true;
      }
      NextPart();
    }
    return false;
  }

  void Print() override {
    if (record_ >= found_.Count()) return;
    const FoundAddress record = found_.At(record_);
    const std::string_view url = plain_ ? record.URL : AddressInLine(record.URL, url_storage_);
    switch (part_) {
      case Part::kRows:
        PutPadded(std::to_string(++rows_), number_width_);
        PutPadded(record.Address, address_width_);
        PutPadded(url, url_width_);
        PutLine(plain_ ? record.Title : TitleInLine(record.Title, title_storage_));
        break;
      case Part::kUrls:
        PutLine(url);
        break;
      case Part::kHomePages:
        Put("http://");
        PutLine(HostPart(url));
        break;
      case Part::kEnd:
        break;
    }
  }

 private:
  enum class Part { kRows, kUrls, kHomePages, kEnd };

  // Over all records, those that are left out included.
  void MeasureColumns() {
    PlainTest test;
    FoundAddress last;
    for (std::uint32_t i = 0; i < count_; ++i) {
      const FoundAddress record = found_.At(i);
      test.Look(record.Address);
      address_width_ = std::max(address_width_, record.Address.size());
      if (IsSameText(record.URL, last.URL) && IsSameText(record.Title, last.Title)) continue;
      test.Look(record.URL);
      test.Look(record.Title);
      url_width_ = std::max(url_width_, record.URL.size());
      title_width_ = std::max(title_width_, record.Title.size());
      last = record;
    }
    plain_ = test.plain();
    if (!plain_) CountCharacters();
    number_width_ = std::to_string(count_).size() + kGap;
    for (std::size_t* width : {&address_width_, &url_width_, &title_width_}) *width += kGap;
  }

  void CountCharacters() {
    address_width_ = url_width_ = title_width_ = 0;
    for (std::uint32_t i = 0; i < count_; ++i) {
      const FoundAddress record = found_.At(i);
      address_width_ = std::max(address_width_, Characters(record.Address));
      url_width_ = std::max(url_width_, Characters(AddressInLine(record.URL, url_storage_)));
      title_width_ = std::max(title_width_, Characters(record.Title));
    }
  }

  // Whether both views show the same copy of a text. The records of one page share one.
  static bool IsSameText(std::string_view a, std::string_view b) {
    return a.data() == b.data() && a.size() == b.size();
  }

  [[nodiscard]] std::size_t RuleWidth() const { return number_width_ + address_width_ + url_width_ + title_width_; }

  // Whether the part has a line for the record. A record that is left out still counts as seen in the lists of distinct
  // values, so its value is not printed for a later record either. Reports of the same table stay the same byte for
  // byte. Kept: ReportFileTest.UrlsAreDistinctAndOneSeenOnARecordLeftOutIsNotPrintedLater.
  bool IsPrinted(std::uint32_t number) {
    const FoundAddress record = found_.At(number);
    if (part_ != Part::kRows && !IsNewValue(record.URL, number)) return false;
    return !record.TagOnly;
  }

  // What the part lists of a record's URL.
  [[nodiscard]] std::string_view ValueOf(std::string_view url) const {
    return part_ == Part::kHomePages ? HostPart(url) : url;
  }

  bool IsNewValue(std::string_view url, std::uint32_t number) {
    if (number > 0 && IsSameText(url, last_url_)) return false;
    last_url_ = url;
    if (part_ == Part::kHomePages && url.empty()) return false;
    const std::string_view value = ValueOf(url);
    const std::uint32_t hash = hash_.Exact(value);
    const auto equal = [&](std::uint32_t seen) {
      return seen < found_.Count() && ValueOf(found_.At(seen).URL) == value;
    };
    if (seen_.Contains(hash, equal)) return false;
    seen_.Insert(hash, number);
    return true;
  }

  void NextPart() {
    next_ = 0;
    seen_ = IndexTable();
    part_ = part_ == Part::kRows ? Part::kUrls : part_ == Part::kUrls ? Part::kHomePages : Part::kEnd;
    if (part_ == Part::kEnd) return;
    PutLine("");
    PutLine("");
    PutHeading(part_ == Part::kUrls ? "URL" : "Home Page");
  }

  void PutLine(std::string_view text) {
    Put(text);
    EndLine();
  }

  void PutPadded(std::string_view text, std::size_t width) {
    Put(text);
    const std::size_t characters = plain_ ? text.size() : Characters(text);
    if (characters < width) PutBlanks(width - characters);
  }

  void PutHeading(std::string_view text) {
    const std::string rule(RuleWidth(), '#');
    PutLine(rule);
    PutLine(text);
    PutLine(rule);
  }

  const FoundAddresses& found_;
  const std::uint32_t count_;  // of the records at the start
  std::size_t number_width_ = 0, address_width_ = 0, url_width_ = 0, title_width_ = 0;
  bool plain_ = true;  // every text is printable ASCII
  Part part_ = Part::kRows;
  std::uint32_t next_ = 0, record_ = 0, rows_ = 0;
  TextHash hash_;
  IndexTable seen_;            // of the part's values, by the first record that has each
  std::string_view last_url_;  // compared by its place in memory, not by its text
  std::string url_storage_, title_storage_;
};

}  // namespace

Result<std::unique_ptr<RecordWriter>> StartReport(Files& files, const CodePage& code_page, const std::string& path,
                                                  const FoundAddresses& found, bool all_information,
                                                  std::uint32_t most) {
  if (found.Count() > most) return Status(StatusKind::kLimit, kOverflowText);
  auto file = files.Replace(path);
  if (!file.ok()) return file.status();
  return std::unique_ptr<RecordWriter>(std::make_unique<ReportWriter>(code_page, file.take(), found, all_information));
}

Status WriteReport(Files& files, const CodePage& code_page, EventLoop& loop, const std::string& path,
                   const FoundAddresses& found, bool all_information, Pump::Pace pace) {
  return WriteWhole(StartReport(files, code_page, path, found, all_information), loop, pace);
}

}  // namespace quenlar
