#include "project/data_file.h"

#include <algorithm>
#include <array>
#include <utility>
#include <vector>

#include "base/product.h"
#include "state/settings.h"

namespace quenlar {
namespace {

// Queue indices (0 is queue M) in the order of the file's sections.
constexpr std::array<int, kLevels> kSectionOrder = {1, 2, 3, 4, 5, 0, 6, 7, 8, 9, 10};
constexpr std::size_t kMaxLineBytes = 64u << 20;  // no page, and so no link on it, is longer

class DataFileWriter final : public RecordWriter {
 public:
  DataFileWriter(const CodePage& code_page, std::unique_ptr<FileReplacement> file, const LinkQueues& queues)
      : RecordWriter(code_page, std::move(file)), queues_(queues) {
    for (int section = 0; section < kLevels; ++section) {
      const LinkQueue& queue = queues[kSectionOrder[section]];
      parts_[section] = {queue.InFlight(), queue.Next(), queue.Count()};
    }
    Put(HeaderLine());
    EndLine();
    PutMarker();
  }

 protected:
  bool Find() override {
    while (section_ < kLevels) {
      Part& part = parts_[section_];
      const std::uint32_t now = Queue().Count();
      while (at_in_flight_ < part.in_flight.size()) {
        record_ = part.in_flight[at_in_flight_++];
        if (record_ < now) return true;
      }
      if (part.next < part.count && part.next < now) {
        record_ = part.next++;
        return true;
      }
      at_in_flight_ = 0;
      if (++section_ < kLevels) PutMarker();
    }
    return false;
  }

  void Print() override {
    if (record_ >= Queue().Count()) return;  // the queue was emptied meanwhile
    Put(AddressInLine(Queue().At(record_).URL, storage_));
    EndLine();
  }

 private:
  struct Part {
    std::vector<std::uint32_t> in_flight;
    std::uint32_t next = 0, count = 0;
  };

  [[nodiscard]] const LinkQueue& Queue() const { return queues_[kSectionOrder[section_]]; }

  void PutMarker() {
    const char marker[] = {'[', SectionLetter(kSectionOrder[section_]), ']'};
    Put({marker, sizeof marker});
    EndLine();
  }

  const LinkQueues& queues_;
  std::array<Part, kLevels> parts_;
  int section_ = 0;
  std::size_t at_in_flight_ = 0;
  std::uint32_t record_ = 0;
  std::string storage_;
};

// Takes the lines of the file one after the other and puts each into the queue of its section.
class SectionReader {
 public:
  explicit SectionReader(LinkQueues& queues) : queues_(queues) {}

  // True when the line was added to a queue, false for a marker.
  bool Take(std::string_view line) {
    const int marker = MarkerOf(line);
    // In section k the markers of the sections up to k + 1 count. A marker of a later section is taken for a link of
    // section k.
    if (marker != 0 && (section_ == 0 || marker <= section_ + 1)) {
      section_ = marker;
      return false;
    }
    queues_[kSectionOrder[section_ == 0 ? kLevels - 1 : section_ - 1]].AddIfNew(line);
    return true;
  }

 private:
  // 1 to 11 by the line's first three characters, 0 for no marker.
  static int MarkerOf(std::string_view line) {
    if (line.size() < 3 || line[0] != '[' || line[2] != ']') return 0;
    for (int section = 0; section < kLevels; ++section) {
      if (line[1] == SectionLetter(kSectionOrder[section])) return section + 1;
    }
    return 0;
  }

  LinkQueues& queues_;
  int section_ = 0;
};

// Cuts blocks of bytes into lines and hands them on as UTF-8, until a call for a line returns false.
class LineCutter {
 public:
  LineCutter(const CodePage& code_page, std::function<bool(std::string_view line)> take)
      : code_page_(code_page), take_(std::move(take)) {}

  bool AddBlock(std::string_view bytes) {
    const std::size_t last_end = bytes.rfind('\n');
    if (last_end == std::string_view::npos) {
      Keep(bytes);
      return true;
    }
    Keep(bytes.substr(0, last_end + 1));
    const bool go_on = HandOn();
    Keep(bytes.substr(last_end + 1));
    return go_on;
  }

  // Hands on the last line when no line end follows it. In a file that was cut inside a CR LF, the line ends in CR.
  void AtEnd() {
    if (rest_.ends_with('\r')) rest_ += '\n';
    if (!rest_.empty()) HandOn();
  }

  [[nodiscard]] bool skipped_a_line() const { return skipped_; }

 private:
  void Keep(std::string_view bytes) {
    if (skipping_) {
      const std::size_t end = bytes.find('\n');
      if (end == std::string_view::npos) return;
      skipping_ = false;
      bytes.remove_prefix(end + 1);
    }
    if (rest_.size() + bytes.size() > kMaxLineBytes) {
      skipped_ = true;
      rest_.clear();
      const std::size_t end = bytes.find('\n');
      skipping_ = end == std::string_view::npos;
      bytes.remove_prefix(skipping_ ? bytes.size() : end + 1);
    }
    rest_.append(bytes);
  }

  bool HandOn() {
    const std::string text = code_page_.ToUtf8(std::exchange(rest_, {}));
    for (std::size_t from = 0; from < text.size();) {
      const std::size_t end = std::min(text.find('\n', from), text.size());
      std::string_view line(text.data() + from, end - from);
      if (end < text.size() && line.ends_with('\r')) line.remove_suffix(1);
      if (!take_(line)) return false;
      from = end + 1;
    }
    return true;
  }

  const CodePage& code_page_;
  std::function<bool(std::string_view line)> take_;
  std::string rest_;
  bool skipping_ = false, skipped_ = false;
};

}  // namespace

std::string HeaderLine() { return std::string(kProductName) + ", " + kHomePage; }

Result<std::unique_ptr<RecordWriter>> StartDataFile(Files& files, const CodePage& code_page, const std::string& path,
                                                    const LinkQueues& queues) {
  for (const LinkQueue& queue : queues) {
    if (queue.Count() > kMaxWritten) return Status(StatusKind::kLimit, kOverflowText);
  }
  auto file = files.Replace(path);
  if (!file.ok()) return file.status();
  return std::unique_ptr<RecordWriter>(std::make_unique<DataFileWriter>(code_page, file.take(), queues));
}

Status WriteDataFile(Files& files, const CodePage& code_page, EventLoop& loop, const std::string& path,
                     const LinkQueues& queues, Pump::Pace pace) {
  return WriteWhole(StartDataFile(files, code_page, path, queues), loop, pace);
}

DataFileContents ReadDataFile(const Files& files, const CodePage& code_page, const std::string& path,
                              LinkQueues& queues, const std::function<bool()>& added) {
  if (!files.FileExists(path)) return DataFileContents::kMissing;
  enum class Header { kAwaited, kRight, kOther } header = Header::kAwaited;
  SectionReader sections(queues);
  bool stopped = false;
  LineCutter cutter(code_page, [&](std::string_view line) {
    if (header == Header::kAwaited) {
      header = line == HeaderLine() ? Header::kRight : Header::kOther;
      return header == Header::kRight;
    }
    stopped = sections.Take(line) && !added();
    return !stopped;
  });
  const Status read = files.Read(path, [&](std::string_view bytes) { return cutter.AddBlock(bytes); });
  if (header != Header::kOther && !stopped) cutter.AtEnd();
  if (header != Header::kRight) return DataFileContents::kOtherHeader;
  return read.ok() && !cutter.skipped_a_line() ? DataFileContents::kLoaded : DataFileContents::kCutShort;
}

}  // namespace quenlar
