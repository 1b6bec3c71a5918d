// A text file that is written record by record, so that its owner can let the program run on between two records.
#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "base/status.h"
#include "platform/code_page.h"
#include "platform/files.h"

namespace quenlar {

// Lines in the ANSI code page, each ended by CR LF. The old file is replaced by Commit and by nothing else.
//
//   while (writer->Advance()) { pump(); writer->Write(); }
//   status = writer->Commit();
//
// What the pump runs may finish the whole file (FinishNow, Commit) or give it up (Discard); the loop then just ends.
class RecordWriter {
 public:
  RecordWriter(const CodePage& code_page, std::unique_ptr<FileReplacement> file)
      : code_page_(code_page), file_(std::move(file)) {}
  RecordWriter(const RecordWriter&) = delete;
  RecordWriter& operator=(const RecordWriter&) = delete;
  virtual ~RecordWriter() = default;

  // Looks for the next record to be written; false when none is left, after a failure, or when the file is done with.
  bool Advance();
  // Writes the record that Advance has found, once.
  void Write();
  // Writes all that is left.
  void FinishNow();

  // Writes what is buffered and replaces the file, or gives the failure that happened before. Later calls do nothing
  // but give the same answer.
  Status Commit();
  // Gives the file up: it is not replaced, and Commit answers with success.
  void Discard();
  [[nodiscard]] bool done() const { return file_ == nullptr; }

 protected:
  // The next record in order; false at the end.
  virtual bool Find() = 0;
  // Puts the found record's line.
  virtual void Print() = 0;

  void Put(std::string_view text) { buffer_.append(text); }
  void PutBlanks(std::size_t count) { buffer_.append(count, ' '); }
  void EndLine();

 private:
  void Flush();

  const CodePage& code_page_;
  std::unique_ptr<FileReplacement> file_;
  std::string buffer_;  // UTF-8, whole lines when flushed
  Status status_;
  bool found_ = false;
  bool torn_ = false;  // memory ran out in the middle of a line; such a file replaces none
};

// The whole of a web address or a title as it stands in one line: a line end inside an address is percent-encoded as
// it is on the wire, in a title it becomes a blank. `storage` holds the text where it had to be changed.
[[nodiscard]] std::string_view AddressInLine(std::string_view address, std::string& storage);
[[nodiscard]] std::string_view TitleInLine(std::string_view title, std::string& storage);

}  // namespace quenlar
