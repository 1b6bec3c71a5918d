#include "platform/posix/files.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <memory>
#include <utility>

#include <dirent.h>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include "platform/posix/descriptor.h"
#include "platform/posix/errors.h"
#include "platform/posix/replacement.h"

namespace quenlar {
namespace {

constexpr std::size_t kBlockBytes = 64 * 1024;

// The system reads a path up to its first NUL. A path with a NUL inside would therefore name another file.
Status CheckPath(const std::string& path) {
  if (!path.empty() && path.find('\0') == std::string::npos) return Status::Ok();
  return {StatusKind::kFailed, path + ": not a path"};
}

class DescriptorLock : public FolderLock {
 public:
  explicit DescriptorLock(Descriptor file) : file_(std::move(file)) {}

 private:
  Descriptor file_;
};

class DescriptorFile final : public ReadableFile {
 public:
  DescriptorFile(Descriptor file, const struct stat& about, std::string path)
      : file_(std::move(file)), about_(about), path_(std::move(path)) {}

  [[nodiscard]] std::optional<std::uint64_t> size() const override {
    return Plain() ? std::optional(static_cast<std::uint64_t>(about_.st_size)) : std::nullopt;
  }
  [[nodiscard]] std::int64_t modified() const override { return about_.st_mtim.tv_sec; }
  [[nodiscard]] std::int64_t modified_nanoseconds() const override { return about_.st_mtim.tv_nsec; }
  [[nodiscard]] Result<std::size_t> ReadAt(std::uint64_t offset, char* buffer, std::size_t size) const override {
    std::size_t done = 0;
    while (done < size) {
      const ssize_t got = Plain() ? pread(file_.get(), buffer + done, size - done, static_cast<off_t>(offset + done))
                                  : read(file_.get(), buffer + done, size - done);
      if (got < 0 && errno == EINTR) continue;
      if (got < 0) return StatusOfErrno(errno, path_);
      if (got == 0) break;
      done += static_cast<std::size_t>(got);
    }
    return done;
  }

 private:
  [[nodiscard]] bool Plain() const { return S_ISREG(about_.st_mode); }

  const Descriptor file_;
  const struct stat about_;
  const std::string path_;
};

class PosixGrowingFile : public GrowingFile {
 public:
  PosixGrowingFile(std::string path, Descriptor file) : path_(std::move(path)), file_(std::move(file)) {}

  Status Append(std::string_view bytes) override {
    const off_t length = length_ + static_cast<off_t>(bytes.size());
    while (!bytes.empty()) {
      const ssize_t size = write(file_.get(), bytes.data(), bytes.size());
      if (size < 0 && errno == EINTR) continue;
      if (size < 0) {
        const int error = errno;
        if (ftruncate(file_.get(), length_) == 0) lseek(file_.get(), length_, SEEK_SET);
        return StatusOfErrno(error, path_);
      }
      bytes.remove_prefix(static_cast<std::size_t>(size));
    }
    length_ = length;
    return Status::Ok();
  }

  Status Flush() override { return fsync(file_.get()) == 0 ? Status::Ok() : StatusOfErrno(errno, path_); }

 private:
  const std::string path_;
  const Descriptor file_;
  off_t length_ = 0;
};

}  // namespace

PathKind PosixFiles::KindOf(const std::string& path) const {
  struct stat about {};
  if (!CheckPath(path).ok() || lstat(path.c_str(), &about) != 0) return PathKind::kNothing;
  return S_ISREG(about.st_mode) ? PathKind::kFile : S_ISDIR(about.st_mode) ? PathKind::kFolder : PathKind::kOther;
}

bool PosixFiles::FileExists(const std::string& path) const {
  struct stat about {};
  return CheckPath(path).ok() && stat(path.c_str(), &about) == 0 && S_ISREG(about.st_mode);
}

bool PosixFiles::FolderExists(const std::string& path) const {
  struct stat about {};
  return CheckPath(path).ok() && stat(path.c_str(), &about) == 0 && S_ISDIR(about.st_mode);
}

Result<std::vector<std::string>> PosixFiles::Names(const std::string& folder) const {
  if (const Status checked = CheckPath(folder); !checked.ok()) return checked;
  const std::unique_ptr<DIR, int (*)(DIR*)> open_folder(opendir(folder.c_str()), closedir);
  if (!open_folder) return StatusOfErrno(errno, folder);
  std::vector<std::string> names;
  for (;;) {
    errno = 0;
    const dirent* const entry = readdir(open_folder.get());
    if (entry == nullptr) break;
    const std::string_view name = entry->d_name;
    if (name != "." && name != "..") names.emplace_back(name);
  }
  if (errno != 0) return StatusOfErrno(errno, folder);
  std::sort(names.begin(), names.end());
  return names;
}

Status PosixFiles::MakeFolder(const std::string& path) {
  if (const Status checked = CheckPath(path); !checked.ok()) return checked;
  if (mkdir(path.c_str(), 0777) == 0) return Status::Ok();
  const int error = errno;
  return FolderExists(path) ? Status::Ok() : StatusOfErrno(error, path);
}

Status PosixFiles::Read(const std::string& path, const std::function<bool(std::string_view bytes)>& block) const {
  if (const Status checked = CheckPath(path); !checked.ok()) return checked;
  const Descriptor file(open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NOCTTY));
  if (!file.valid()) return StatusOfErrno(errno, path);
  posix_fadvise(file.get(), 0, 0, POSIX_FADV_SEQUENTIAL);
  const auto buffer = std::make_unique<std::array<char, kBlockBytes>>();
  while (true) {
    const ssize_t size = read(file.get(), buffer->data(), buffer->size());
    if (size < 0 && errno == EINTR) continue;
    if (size < 0) return StatusOfErrno(errno, path);
    if (size == 0 || !block(std::string_view(buffer->data(), static_cast<std::size_t>(size)))) return Status::Ok();
  }
}

Result<std::unique_ptr<ReadableFile>> PosixFiles::Open(const std::string& path) const {
  if (const Status checked = CheckPath(path); !checked.ok()) return checked;
  Descriptor file(open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NOCTTY));
  struct stat about {};
  if (!file.valid() || fstat(file.get(), &about) != 0) return StatusOfErrno(errno, path);
  if (S_ISDIR(about.st_mode)) return StatusOfErrno(EISDIR, path);
  return std::unique_ptr<ReadableFile>(std::make_unique<DescriptorFile>(std::move(file), about, path));
}

Result<std::unique_ptr<FileReplacement>> PosixFiles::Replace(const std::string& path) {
  if (const Status checked = CheckPath(path); !checked.ok()) return checked;
  auto target = ResolveLinks(path);
  if (!target.ok()) return target.status();
  if (swept_.insert(target.value()).second) RemoveLeftovers(target.value());
  auto replacement = PosixReplacement::Begin(target.take());
  if (!replacement.ok()) return replacement.status();
  return std::unique_ptr<FileReplacement>(replacement.take());
}

Result<std::unique_ptr<GrowingFile>> PosixFiles::Create(const std::string& path) {
  if (const Status checked = CheckPath(path); !checked.ok()) return checked;
  Descriptor file(open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC | O_NOCTTY, 0666));
  if (!file.valid() && errno == EEXIST) return Status(StatusKind::kBusy, path + ": it exists");
  if (!file.valid()) return StatusOfErrno(errno, path);
  return std::unique_ptr<GrowingFile>(std::make_unique<PosixGrowingFile>(path, std::move(file)));
}

Status PosixFiles::Delete(const std::string& path) {
  if (const Status checked = CheckPath(path); !checked.ok()) return checked;
  if (FolderExists(path)) return StatusOfErrno(EISDIR, path);
  return unlink(path.c_str()) == 0 ? Status::Ok() : StatusOfErrno(errno, path);
}

Status PosixFiles::Rename(const std::string& from, const std::string& to) {
  for (const std::string* path : {&from, &to}) {
    if (const Status checked = CheckPath(*path); !checked.ok()) return checked;
  }
  return rename(from.c_str(), to.c_str()) == 0 ? Status::Ok() : StatusOfErrno(errno, from);
}

Result<std::unique_ptr<FolderLock>> PosixFiles::Lock(const std::string& folder, const std::string& lock_name) {
  const std::string path = folder + "/" + lock_name;
  if (const Status checked = CheckPath(path); !checked.ok()) return checked;
  Descriptor file(open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW | O_NOCTTY, 0666));
  if (!file.valid()) return StatusOfErrno(errno, path);
  if (flock(file.get(), LOCK_EX | LOCK_NB) != 0) return StatusOfErrno(errno, folder);
  return std::unique_ptr<FolderLock>(std::make_unique<DescriptorLock>(std::move(file)));
}

}  // namespace quenlar
