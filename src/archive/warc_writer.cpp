#include "archive/warc_writer.h"

#include <algorithm>
#include <charconv>
#include <utility>
#include <vector>

namespace quenlar {
namespace {

constexpr std::string_view kEnding = ".warc.gz";
constexpr std::size_t kDigits = 5;

// The number of "name-00012.warc.gz"; -1 of any other name.
std::int64_t NumberOf(std::string_view file, std::string_view name) {
  if (!file.starts_with(name) || !file.ends_with(kEnding) || file.size() < name.size() + 1 + kEnding.size()) return -1;
  const std::string_view rest = file.substr(name.size(), file.size() - name.size() - kEnding.size());
  if (rest.front() != '-' || rest.size() < 1 + kDigits) return -1;
  std::int64_t number = -1;
  const auto [end, error] = std::from_chars(rest.data() + 1, rest.data() + rest.size(), number);
  return error == std::errc() && end == rest.data() + rest.size() ? number : -1;
}

std::string NumberText(std::int64_t number) {
  std::string digits = std::to_string(number);
  if (digits.size() < kDigits) digits.insert(0, kDigits - digits.size(), '0');
  return digits;
}

}  // namespace

WarcWriter::WarcWriter(Files& files, const Clock& clock, std::string prefix, WarcOrigin origin,
                       std::uint64_t file_bytes)
    : files_(files), clock_(clock), prefix_(std::move(prefix)), origin_(std::move(origin)), file_bytes_(file_bytes) {}

Result<std::unique_ptr<WarcWriter>> WarcWriter::Open(Files& files, const Clock& clock, std::string prefix,
                                                     char separator, WarcOrigin origin, std::uint64_t file_bytes) {
  const std::size_t slash = prefix.find_last_of(separator == '\\' ? "\\/" : "/");
  const std::string folder = slash == std::string::npos ? "." : prefix.substr(0, std::max<std::size_t>(slash, 1));
  const std::string name = slash == std::string::npos ? prefix : prefix.substr(slash + 1);
  const Result<std::vector<std::string>> names = files.Names(folder);
  if (!names.ok()) return names.status();
  std::unique_ptr<WarcWriter> writer;
  writer.reset(new WarcWriter(files, clock, prefix, origin, file_bytes));  // check: raw-new a private constructor
  writer->name_ = name;
  for (const std::string& file : names.value()) {
    writer->number_ = std::max(writer->number_, NumberOf(file, name) + 1);
  }
  return writer;
}

// Another program that writes with this prefix may have been faster with a number.
Status WarcWriter::BeginFile() {
  for (;;) {
    const std::string ending = "-" + NumberText(number_++) + std::string(kEnding);
    auto created = files_.Create(prefix_ + ending);
    if (created.status().kind() == StatusKind::kBusy) continue;
    if (!created.ok()) return created.status();
    file_ = created.take();
    info_id_ = ids_.Next();
    const std::string info = WarcInfoRecord(origin_, info_id_, name_ + ending, clock_.UtcSeconds());
    if (info.empty()) return {StatusKind::kFailed, prefix_ + ": memory is short"};
    written_ = info.size();
    return file_->Append(info);
  }
}

Status WarcWriter::Write(const std::string& url, const WebAnswer& answer, WarcCut cut) {
  if (!status_.ok() || !answer.wire) return status_;
  if (!file_ || written_ >= file_bytes_) {
    if (file_) status_ = file_->Flush();
    if (status_.ok()) status_ = BeginFile();
    if (!status_.ok()) return status_;
  }
  const WarcExchange exchange{url, answer.head.ip, *answer.wire, cut, clock_.UtcSeconds(), info_id_};
  const std::string records = WarcExchangeRecords(exchange, ids_);
  status_ = records.empty() ? Status(StatusKind::kFailed, prefix_ + ": memory is short") : file_->Append(records);
  if (status_.ok()) written_ += records.size();
  return status_;
}

Status WarcWriter::Flush() {
  if (file_ && status_.ok()) status_ = file_->Flush();
  return status_;
}

}  // namespace quenlar
