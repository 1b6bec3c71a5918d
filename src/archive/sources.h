// Where the bytes of an input come from.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>

#include "archive/byte_source.h"
#include "platform/files.h"

namespace quenlar {

// A file from a place on; of what is not a plain file what comes next.
class FileSource final : public ByteSource {
 public:
  FileSource(const ReadableFile& file, std::uint64_t offset) : file_(file), offset_(offset) {}
  [[nodiscard]] Result<std::size_t> Read(char* buffer, std::size_t size) override {
    Result<std::size_t> got = file_.ReadAt(offset_, buffer, size);
    if (got.ok()) offset_ += got.value();
    return got;
  }

 private:
  const ReadableFile& file_;
  std::uint64_t offset_;
};

// What has been read of a source already, and then the rest of it.
class ResumedSource final : public ByteSource {
 public:
  ResumedSource(std::string beginning, ByteSource& rest) : beginning_(std::move(beginning)), rest_(rest) {}
  [[nodiscard]] std::string_view beginning() const { return beginning_; }
  [[nodiscard]] Result<std::size_t> Read(char* buffer, std::size_t size) override {
    if (at_ == beginning_.size()) return rest_.Read(buffer, size);
    const std::size_t got = beginning_.copy(buffer, size, at_);
    at_ += got;
    return got;
  }

 private:
  const std::string beginning_;
  std::size_t at_ = 0;
  ByteSource& rest_;
};

// Up to `size` bytes of a source; fewer only at its end.
[[nodiscard]] Result<std::string> ReadUpTo(ByteSource& source, std::size_t size);

}  // namespace quenlar
