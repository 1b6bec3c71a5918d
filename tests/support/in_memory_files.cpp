#include "support/in_memory_files.h"

#include <algorithm>
#include <utility>

namespace quenlar {
namespace {

std::string Plain(std::string path) {
  std::replace(path.begin(), path.end(), '\\', '/');
  while (path.size() > 1 && path.back() == '/') path.pop_back();
  return path;
}

// The folder of a plain path; "" for a root ("/" or "C:").
std::string Parent(const std::string& path) {
  const std::size_t slash = path.rfind('/');
  if (slash == std::string::npos || path == "/") return "";
  return slash == 0 ? "/" : path.substr(0, slash);
}

}  // namespace

class InMemoryReplacement : public FileReplacement {
 public:
  InMemoryReplacement(InMemoryFiles& files, std::string path) : files_(files), path_(std::move(path)) {}

  Status Write(std::string_view bytes) override {
    if (failure_.ok()) failure_ = files_.CountCall("write", path_);
    if (failure_.ok() && files_.free_space_) {
      if (bytes.size() > *files_.free_space_) {
        files_.free_space_ = 0;
        failure_ = Status(StatusKind::kFull, path_ + ": no space left");
      } else {
        *files_.free_space_ -= bytes.size();
      }
    }
    if (failure_.ok()) contents_.append(bytes);
    return failure_;
  }

  Status Commit() override {
    if (failure_.ok()) failure_ = files_.CountCall("commit", path_);
    if (failure_.ok()) failure_ = files_.CheckPlace(path_);
    if (!failure_.ok()) return failure_;
    files_.files_[path_] = std::move(contents_);
    failure_ = Status(StatusKind::kFailed, path_ + ": already replaced");
    return Status::Ok();
  }

 private:
  InMemoryFiles& files_;
  std::string path_;
  std::string contents_;
  Status failure_;
};

class InMemoryGrowingFile : public GrowingFile {
 public:
  InMemoryGrowingFile(InMemoryFiles& files, std::string path) : files_(files), path_(std::move(path)) {}

  Status Append(std::string_view bytes) override {
    if (const Status call = files_.CountCall("append", path_); !call.ok()) return call;
    if (files_.free_space_) {
      if (bytes.size() > *files_.free_space_) return {StatusKind::kFull, path_ + ": no space left"};
      *files_.free_space_ -= bytes.size();
    }
    files_.files_[path_].append(bytes);
    return Status::Ok();
  }
  Status Flush() override { return files_.CountCall("flush", path_); }

 private:
  InMemoryFiles& files_;
  const std::string path_;
};

class InMemoryLock : public FolderLock {
 public:
  InMemoryLock(InMemoryFiles& files, std::string path) : files_(files), path_(std::move(path)) {}
  InMemoryLock(const InMemoryLock&) = delete;
  InMemoryLock& operator=(const InMemoryLock&) = delete;
  ~InMemoryLock() override { files_.locks_.erase(path_); }

 private:
  InMemoryFiles& files_;
  std::string path_;
};

namespace {

class InMemoryFile final : public ReadableFile {
 public:
  InMemoryFile(std::string contents, std::int64_t nanoseconds)
      : contents_(std::move(contents)), nanoseconds_(nanoseconds) {}
  [[nodiscard]] std::optional<std::uint64_t> size() const override { return contents_.size(); }
  [[nodiscard]] std::int64_t modified() const override { return InMemoryFiles::kModified; }
  [[nodiscard]] std::int64_t modified_nanoseconds() const override { return nanoseconds_; }
  [[nodiscard]] Result<std::size_t> ReadAt(std::uint64_t offset, char* buffer, std::size_t size) const override {
    return offset >= contents_.size() ? 0 : contents_.copy(buffer, size, offset);
  }

 private:
  const std::string contents_;
  const std::int64_t nanoseconds_;
};

}  // namespace

PathKind InMemoryFiles::KindOf(const std::string& path) const {
  return FileExists(path) ? PathKind::kFile : FolderExists(path) ? PathKind::kFolder : PathKind::kNothing;
}

bool InMemoryFiles::FileExists(const std::string& path) const { return files_.contains(Plain(path)); }

bool InMemoryFiles::FolderExists(const std::string& path) const {
  const std::string plain = Plain(path);
  return plain == "/" || (plain.size() == 2 && plain[1] == ':') || folders_.contains(plain);
}

Result<std::vector<std::string>> InMemoryFiles::Names(const std::string& folder) const {
  if (const Status call = CountCall("names", folder); !call.ok()) return call;
  if (!FolderExists(folder)) return Status(StatusKind::kNotFound, folder + ": no such folder");
  const std::string plain = Plain(folder);
  std::vector<std::string> names;
  const auto add = [&](const std::string& path) {
    if (Parent(path) == plain) names.push_back(path.substr(path.rfind('/') + 1));
  };
  for (const auto& [path, contents] : files_) add(path);
  for (const std::string& path : folders_) add(path);
  std::sort(names.begin(), names.end());
  return names;
}

Status InMemoryFiles::MakeFolder(const std::string& path) {
  if (const Status call = CountCall("make folder", path); !call.ok()) return call;
  if (FolderExists(path)) return Status::Ok();
  if (FileExists(path)) return {StatusKind::kFailed, path + ": a file is in the way"};
  const std::string plain = Plain(path);
  if (const Status place = CheckPlace(plain); !place.ok()) return place;
  folders_.insert(plain);
  return Status::Ok();
}

Status InMemoryFiles::Read(const std::string& path, const std::function<bool(std::string_view bytes)>& block) const {
  if (const Status call = CountCall("read", path); !call.ok()) return call;
  const auto file = files_.find(Plain(path));
  if (file == files_.end()) {
    if (FolderExists(path)) return {StatusKind::kFailed, path + ": a folder"};
    return {StatusKind::kNotFound, path + ": no such file"};
  }
  const std::string contents = file->second;  // what `block` does to the files is not seen by this read
  for (std::size_t at = 0; at < contents.size(); at += block_size_) {
    if (!block(std::string_view(contents).substr(at, block_size_))) break;
  }
  return Status::Ok();
}

Result<std::unique_ptr<ReadableFile>> InMemoryFiles::Open(const std::string& path) const {
  if (const Status call = CountCall("open", path); !call.ok()) return call;
  const auto file = files_.find(Plain(path));
  if (file != files_.end()) {
    const auto nanoseconds = nanoseconds_.find(file->first);
    return std::unique_ptr<ReadableFile>(
        std::make_unique<InMemoryFile>(file->second, nanoseconds == nanoseconds_.end() ? 0 : nanoseconds->second));
  }
  if (FolderExists(path)) return Status(StatusKind::kFailed, path + ": a folder");
  return Status(StatusKind::kNotFound, path + ": no such file");
}

Result<std::unique_ptr<FileReplacement>> InMemoryFiles::Replace(const std::string& path) {
  if (const Status call = CountCall("replace", path); !call.ok()) return call;
  if (FolderExists(path)) return Status(StatusKind::kFailed, path + ": a folder");
  const std::string plain = Plain(path);
  if (const Status place = CheckPlace(plain); !place.ok()) return place;
  return std::unique_ptr<FileReplacement>(std::make_unique<InMemoryReplacement>(*this, plain));
}

Result<std::unique_ptr<GrowingFile>> InMemoryFiles::Create(const std::string& path) {
  const std::string plain = Plain(path);
  if (const Status call = CountCall("create", path); !call.ok()) return call;
  if (FolderExists(plain) || files_.contains(plain)) return Status(StatusKind::kBusy, path + ": it exists");
  if (const Status place = CheckPlace(plain); !place.ok()) return place;
  files_[plain];
  return std::unique_ptr<GrowingFile>(std::make_unique<InMemoryGrowingFile>(*this, plain));
}

Status InMemoryFiles::Delete(const std::string& path) {
  if (const Status call = CountCall("delete", path); !call.ok()) return call;
  const std::string plain = Plain(path);
  if (!files_.contains(plain)) {
    if (FolderExists(plain)) return {StatusKind::kFailed, path + ": a folder"};
    return {StatusKind::kNotFound, path + ": no such file"};
  }
  if (const Status place = CheckPlace(plain); !place.ok()) return place;
  files_.erase(plain);
  return Status::Ok();
}

Status InMemoryFiles::Rename(const std::string& from, const std::string& to) {
  if (const Status call = CountCall("rename", from); !call.ok()) return call;
  const std::string source = Plain(from);
  const std::string target = Plain(to);
  const auto file = files_.find(source);
  if (file == files_.end()) return {StatusKind::kNotFound, from + ": no such file"};
  if (FolderExists(target)) return {StatusKind::kFailed, to + ": a folder"};
  for (const std::string& path : {source, target}) {
    if (const Status place = CheckPlace(path); !place.ok()) return place;
  }
  std::string contents = std::move(file->second);
  files_.erase(file);
  files_[target] = std::move(contents);
  return Status::Ok();
}

Result<std::unique_ptr<FolderLock>> InMemoryFiles::Lock(const std::string& folder, const std::string& lock_name) {
  const std::string path = Plain(Plain(folder) + "/" + lock_name);
  if (const Status call = CountCall("lock", path); !call.ok()) return call;
  if (const Status place = CheckPlace(path); !place.ok()) return place;
  if (locks_.contains(path)) return Status(StatusKind::kBusy, folder + ": in use");
  std::unique_ptr<FolderLock> lock = std::make_unique<InMemoryLock>(*this, path);
  locks_.insert(path);
  return lock;
}

void InMemoryFiles::AddFolder(const std::string& path) {
  for (std::string folder = Plain(path); !folder.empty() && folder != "/"; folder = Parent(folder)) {
    folders_.insert(folder);
  }
}

void InMemoryFiles::Put(const std::string& path, std::string contents) {
  const std::string plain = Plain(path);
  AddFolder(Parent(plain));
  files_[plain] = std::move(contents);
}

void InMemoryFiles::SetModifiedNanoseconds(const std::string& path, std::int64_t nanoseconds) {
  nanoseconds_[Plain(path)] = nanoseconds;
}

std::optional<std::string> InMemoryFiles::Contents(const std::string& path) const {
  const auto file = files_.find(Plain(path));
  return file == files_.end() ? std::nullopt : std::optional(file->second);
}

std::vector<std::string> InMemoryFiles::AllFiles() const {
  std::vector<std::string> paths;
  for (const auto& [path, contents] : files_) paths.push_back(path);
  return paths;
}

void InMemoryFiles::FailCall(int n, StatusKind kind) {
  failing_call_ = n;
  failure_ = kind;
  calls_ = 0;
}

void InMemoryFiles::Protect(const std::string& path) { protected_.insert(Plain(path)); }

void InMemoryFiles::Unprotect(const std::string& path) { protected_.erase(Plain(path)); }

Status InMemoryFiles::CountCall(const char* what, const std::string& path) const {
  if (++calls_ != failing_call_) return Status::Ok();
  return {failure_, path + ": " + what + " failed on demand"};
}

// Whether something may be made, replaced or removed at this plain path.
Status InMemoryFiles::CheckPlace(const std::string& path) const {
  if (!FolderExists(Parent(path))) return {StatusKind::kNotFound, path + ": no such folder"};
  for (std::string at = path; !at.empty(); at = Parent(at)) {
    if (protected_.contains(at)) return {StatusKind::kDenied, path + ": protected"};
  }
  return Status::Ok();
}

}  // namespace quenlar
