// A text file that is written record by record, so that the program can go on with other work between two records.
#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "base/status.h"
#include "platform/code_page.h"
#include "platform/event_loop.h"
#include "platform/files.h"
#include "platform/pump.h"

namespace quenlar {

// Writes lines in the ANSI code page, each ended by CR LF. Only Commit replaces the old file.
//
//   while (writer->Advance()) { pump(); writer->Write(); }
//   status = writer->Commit();
//
// Code inside the pump may finish the whole file (FinishNow, Commit) or give it up (Discard). The loop then ends.
class RecordWriter {
 public:
  RecordWriter(const CodePage& code_page, std::unique_ptr<FileReplacement> file)
      : code_page_(code_page), file_(std::move(file)) {}
  RecordWriter(const RecordWriter&) = delete;
  RecordWriter& operator=(const RecordWriter&) = delete;
  virtual ~RecordWriter() = default;

  // Finds the next record. Returns false when there is none left, after a failure, and after Commit or Discard.
  bool Advance();
  // Writes the record that Advance has found. A second call does nothing.
  void Write();
  // Writes all records that are left.
  void FinishNow();

  // Writes what is buffered and replaces the file. Returns the first failure of the whole writing, if there was one;
  // the old file is whole then. Later calls return the same.
  Status Commit();
  // Gives the new file up. The old one stays, and Commit succeeds.
  void Discard();
  // Whether Commit or Discard has been called.
  [[nodiscard]] bool done() const { return file_ == nullptr; }

 protected:
  // Moves on to the next record. Returns false at the end.
  virtual bool Find() = 0;
  // Writes the line of that record by Put, PutBlanks and EndLine.
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
  bool torn_ = false;  // memory ran out in the middle of a line; such a file must not replace the old one
};

// Writes the whole of a file, with a pump point before each record, and commits it. Pumps. `writer` is what
// StartDataFile or StartReport has given; its failure is returned.
[[nodiscard]] Status WriteWhole(Result<std::unique_ptr<RecordWriter>> writer, EventLoop& loop, Pump::Pace pace);

// Return a web address or a title without line ends, so that it fits on one line. In an address a line end is
// percent-encoded as it is on the wire; in a title it becomes a blank. The result points into the argument, or into
// `storage` when the text had to be changed.
[[nodiscard]] std::string_view AddressInLine(std::string_view address, std::string& storage);
[[nodiscard]] std::string_view TitleInLine(std::string_view title, std::string& storage);

}  // namespace quenlar
