// The temporary file that becomes the new contents of another.
#pragma once

#include <memory>
#include <string>

#include "base/status.h"
#include "platform/files.h"
#include "platform/posix/descriptor.h"

namespace quenlar {

// Returns the path that a write to `path` reaches: the end of a chain of symbolic links. The file need not exist.
[[nodiscard]] Result<std::string> ResolveLinks(const std::string& path);

// Removes the temporary files of `target` that dead processes have left. A file that cannot be removed stays.
void RemoveLeftovers(const std::string& target);

class PosixReplacement : public FileReplacement {
 public:
  // Begins to replace `target`, which must not be a symbolic link.
  [[nodiscard]] static Result<std::unique_ptr<PosixReplacement>> Begin(std::string target);
  PosixReplacement(const PosixReplacement&) = delete;
  PosixReplacement& operator=(const PosixReplacement&) = delete;
  ~PosixReplacement() override;

  Status Write(std::string_view bytes) override;
  Status Commit() override;

 private:
  PosixReplacement(std::string target, std::string temporary, Descriptor file);
  void Flush();
  void WriteThrough(std::string_view bytes);

  const std::string target_;
  std::string temporary_;  // empty once it has become the target
  Descriptor file_;
  std::string buffer_;
  Status status_;
};

}  // namespace quenlar
