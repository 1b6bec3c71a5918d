#include "project/record_writer.h"

#include <utility>

#include "base/ascii.h"

namespace quenlar {
namespace {

constexpr std::size_t kFlushBytes = 64u << 10;

bool HasLineEnd(std::string_view text) {
  return text.find('\n') != std::string_view::npos || text.find('\r') != std::string_view::npos;
}

std::string_view WithoutLineEnds(std::string_view text, std::string& storage, const char* cr, const char* lf) {
  if (!HasLineEnd(text)) return text;
  storage = ReplaceAll(ReplaceAll(text, "\r", cr), "\n", lf);
  return storage;
}

}  // namespace

bool RecordWriter::Advance() {
  found_ = false;
  if (done() || torn_ || !status_.ok()) return false;
  torn_ = true;
  found_ = Find();
  torn_ = false;
  return found_;
}

void RecordWriter::Write() {
  if (!std::exchange(found_, false) || done()) return;
  torn_ = true;
  Print();
  torn_ = false;
}

void RecordWriter::FinishNow() {
  Write();
  while (Advance()) Write();
}

Status RecordWriter::Commit() {
  if (done()) return status_;
  if (torn_) {
    file_.reset();
    return status_ = {StatusKind::kFailed, "not enough memory"};
  }
  torn_ = true;
  Flush();
  if (status_.ok()) status_ = file_->Commit();
  torn_ = false;
  file_.reset();
  return status_;
}

void RecordWriter::Discard() {
  file_.reset();
  buffer_.clear();
  status_ = Status::Ok();
}

void RecordWriter::EndLine() {
  buffer_.append("\r\n");
  if (buffer_.size() >= kFlushBytes) Flush();
}

// The buffer goes through the conversion and comes back, so that ASCII text is neither copied nor allocated again.
void RecordWriter::Flush() {
  std::string bytes = code_page_.FromUtf8(std::move(buffer_));
  if (status_.ok()) status_ = file_->Write(bytes);
  buffer_ = std::move(bytes);
  buffer_.clear();
}

Status WriteWhole(Result<std::unique_ptr<RecordWriter>> writer, EventLoop& loop, Pump::Pace pace) {
  if (!writer.ok()) return writer.status();
  Pump pump(loop, pace);
  while (writer.value()->Advance()) {
    pump();
    writer.value()->Write();
  }
  return writer.value()->Commit();
}

std::string_view AddressInLine(std::string_view address, std::string& storage) {
  return WithoutLineEnds(address, storage, "%0D", "%0A");
}

std::string_view TitleInLine(std::string_view title, std::string& storage) {
  return WithoutLineEnds(title, storage, " ", " ");
}

}  // namespace quenlar
