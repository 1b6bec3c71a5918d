#include "platform/posix/replacement.h"

#include <cerrno>
#include <charconv>
#include <cstdint>
#include <cstdio>
#include <utility>
#include <vector>

#include <dirent.h>
#include <fcntl.h>
#include <signal.h>
#include <sys/file.h>
#include <sys/random.h>
#include <sys/stat.h>

#include "platform/posix/errors.h"

namespace quenlar {
namespace {

constexpr std::size_t kBufferBytes = 64 * 1024;
constexpr std::string_view kSuffix = ".partial";
constexpr std::size_t kRandomDigits = 16;

std::pair<std::string, std::string> FolderAndName(const std::string& path) {
  const std::size_t slash = path.rfind('/');
  if (slash == std::string::npos) return {".", path};
  return {slash == 0 ? "/" : path.substr(0, slash), path.substr(slash + 1)};
}

// Returns the beginning of the names of a target's temporary files, cut so that a name fits into 255 bytes.
std::string TemporaryPrefix(const std::string& name) { return "." + name.substr(0, 180) + "."; }

std::string TemporaryName(const std::string& name) {
  std::uint64_t random = 0;
  if (getrandom(&random, sizeof random, GRND_NONBLOCK) != sizeof random) {
    random = reinterpret_cast<std::uintptr_t>(&random);  // early after a boot; O_EXCL keeps it safe
  }
  char digits[kRandomDigits + 1];
  std::snprintf(digits, sizeof digits, "%016llx", static_cast<unsigned long long>(random));
  return TemporaryPrefix(name) + std::to_string(getpid()) + "-" + digits + std::string(kSuffix);
}

// The process in ".name.<process>-<random>.partial", or 0.
pid_t OwnerOf(std::string_view name, std::string_view prefix) {
  if (!name.starts_with(prefix) || !name.ends_with(kSuffix)) return 0;
  const std::string_view rest = name.substr(prefix.size());
  pid_t owner = 0;
  const auto [end, error] = std::from_chars(rest.data(), rest.data() + rest.size(), owner);
  const auto digits = static_cast<std::size_t>(end - rest.data());
  if (error != std::errc() || owner <= 0 || rest.size() != digits + 1 + kRandomDigits + kSuffix.size()) return 0;
  const std::string_view random = rest.substr(digits + 1, kRandomDigits);
  return rest[digits] == '-' && random.find_first_not_of("0123456789abcdef") == random.npos ? owner : 0;
}

// Returns whether no process uses the temporary file: the process in its name is gone, and no other holds its lock. A
// process of another name space has numbers of its own, so the lock is needed too.
bool IsAbandoned(const std::string& path, pid_t owner) {
  if (kill(owner, 0) == 0 || errno != ESRCH) return false;
  const Descriptor file(open(path.c_str(), O_RDWR | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK));
  return file.valid() && flock(file.get(), LOCK_EX | LOCK_NB) == 0;
}

}  // namespace

Result<std::string> ResolveLinks(const std::string& path) {
  std::string at = path;
  for (int hops = 0; hops < 40; ++hops) {
    std::vector<char> link(4096);
    const ssize_t size = readlink(at.c_str(), link.data(), link.size());
    if (size < 0) return at;  // no link, or not there: opening it will tell
    const std::string target(link.data(), static_cast<std::size_t>(size));
    at = target.starts_with('/') ? target : FolderAndName(at).first + "/" + target;
  }
  return StatusOfErrno(ELOOP, path);
}

void RemoveLeftovers(const std::string& target) {
  const auto [folder, name] = FolderAndName(target);
  DIR* entries = opendir(folder.c_str());
  if (entries == nullptr) return;
  const std::string prefix = TemporaryPrefix(name);
  std::vector<std::string> abandoned;
  while (const dirent* entry = readdir(entries)) {
    const pid_t owner = OwnerOf(entry->d_name, prefix);
    const std::string path = folder + "/" + entry->d_name;
    if (owner > 0 && IsAbandoned(path, owner)) abandoned.push_back(path);
  }
  closedir(entries);
  for (const std::string& path : abandoned) unlink(path.c_str());
}

Result<std::unique_ptr<PosixReplacement>> PosixReplacement::Begin(std::string target) {
  struct stat old {};
  const bool exists = stat(target.c_str(), &old) == 0;
  if (exists && S_ISDIR(old.st_mode)) return StatusOfErrno(EISDIR, target);
  if (exists && !S_ISREG(old.st_mode)) return Status(StatusKind::kFailed, target + ": not a plain file");
  // Renaming would ignore the write protection of the file, and a user has set that on purpose.
  if (exists && faccessat(AT_FDCWD, target.c_str(), W_OK, AT_EACCESS) != 0) return StatusOfErrno(errno, target);

  const auto [folder, name] = FolderAndName(target);
  std::string temporary = folder + "/" + TemporaryName(name);
  Descriptor file(open(temporary.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC | O_NOFOLLOW, exists ? 0600 : 0666));
  if (!file.valid()) return StatusOfErrno(errno, target);
  std::unique_ptr<PosixReplacement> replacement(
      new PosixReplacement(std::move(target), std::move(temporary), std::move(file)));
  const int fd = replacement->file_.get();
  flock(fd, LOCK_EX | LOCK_NB);  // says that the file is in use; where that fails, the process in its name says it
  if (exists) {
    const bool given = fchown(fd, old.st_uid, old.st_gid) == 0;  // only root can give a file away
    const mode_t mode = old.st_mode & (given ? 07777 : 0777);
    if (fchmod(fd, mode) != 0) return StatusOfErrno(errno, replacement->target_);
  }
  return replacement;
}

PosixReplacement::PosixReplacement(std::string target, std::string temporary, Descriptor file)
    : target_(std::move(target)), temporary_(std::move(temporary)), file_(std::move(file)) {}

PosixReplacement::~PosixReplacement() {
  if (!temporary_.empty()) unlink(temporary_.c_str());
}

Status PosixReplacement::Write(std::string_view bytes) {
  if (bytes.size() >= kBufferBytes) {
    Flush();
    if (status_.ok()) WriteThrough(bytes);
    return status_;
  }
  if (buffer_.size() + bytes.size() > kBufferBytes) Flush();
  if (status_.ok()) buffer_.append(bytes);
  return status_;
}

Status PosixReplacement::Commit() {
  Flush();
  if (!status_.ok()) return status_;
  if (fsync(file_.get()) != 0 || !file_.Close() || rename(temporary_.c_str(), target_.c_str()) != 0) {
    return status_ = StatusOfErrno(errno, target_);
  }
  temporary_.clear();
  status_ = Status(StatusKind::kFailed, target_ + ": has been replaced");
  // The file is whole by now, old or new; some file systems cannot flush a folder.
  const Descriptor folder(open(FolderAndName(target_).first.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  if (folder.valid()) fsync(folder.get());
  return Status::Ok();
}

void PosixReplacement::Flush() {
  if (status_.ok()) WriteThrough(buffer_);
  buffer_.clear();
}

void PosixReplacement::WriteThrough(std::string_view bytes) {
  while (!bytes.empty()) {
    const ssize_t size = write(file_.get(), bytes.data(), bytes.size());
    if (size < 0 && errno == EINTR) continue;
    if (size < 0) {
      status_ = StatusOfErrno(errno, target_);
      return;
    }
    bytes.remove_prefix(static_cast<std::size_t>(size));
  }
}

}  // namespace quenlar
