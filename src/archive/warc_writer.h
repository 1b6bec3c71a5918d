// Writes web archives: PREFIX-00000.warc.gz, PREFIX-00001.warc.gz and so on.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "archive/warc_records.h"
#include "base/status.h"
#include "platform/clock.h"
#include "platform/files.h"
#include "platform/web_client.h"

namespace quenlar {

// A file is begun with the first exchange, and no file that exists is written to. What is written lies in the file at
// once, exchange by exchange, so that a program that is killed leaves records that are whole, but for the last one.
class WarcWriter {
 public:
  static constexpr std::uint64_t kFileBytes = 1'000'000'000;

  // `prefix` is an absolute path without the number. Fails where its folder cannot be read. `files` and `clock` must
  // outlive the writer.
  [[nodiscard]] static Result<std::unique_ptr<WarcWriter>> Open(Files& files, const Clock& clock, std::string prefix,
                                                                char separator, WarcOrigin origin,
                                                                std::uint64_t file_bytes = kFileBytes);

  // Writes the request and the answer of `answer.wire`; without a head in it the request alone. After a failure nothing
  // of the two is in the file, and every later call fails with the same status.
  Status Write(const std::string& url, const WebAnswer& answer, WarcCut cut);
  // Flushes to the medium. A writer that is destroyed without it leaves that to the system.
  Status Flush();

 private:
  WarcWriter(Files& files, const Clock& clock, std::string prefix, WarcOrigin origin, std::uint64_t file_bytes);
  Status BeginFile();

  Files& files_;
  const Clock& clock_;
  const std::string prefix_;
  const WarcOrigin origin_;
  const std::uint64_t file_bytes_;
  std::string folder_, name_;  // of the prefix
  WarcIds ids_;
  std::unique_ptr<GrowingFile> file_;
  std::uint64_t written_ = 0;  // bytes of the file
  std::int64_t number_ = 0;    // of the next file
  std::string info_id_;
  Status status_;
};

}  // namespace quenlar
