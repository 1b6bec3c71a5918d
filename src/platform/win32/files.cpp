#include "platform/win32/files.h"

#include <algorithm>
#include <atomic>
#include <cwchar>
#include <functional>
#include <memory>
#include <optional>
#include <string_view>
#include <utility>

#include "platform/win32/handle.h"
#include "platform/win32/system_error.h"
#include "platform/win32/wide.h"
#include "platform/win32/windows_api.h"

namespace quenlar {
namespace {

using win32::Handle;
using win32::NativePath;
using win32::SystemError;

constexpr DWORD kShareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
constexpr std::size_t kBlock = 64 * 1024;

Status LastError(const std::string& path) { return SystemError(path, GetLastError()); }

// The attributes of what the path names, behind links; empty where there is nothing, or no file or folder.
std::optional<DWORD> Attributes(const std::wstring& path) {
  const DWORD attributes = GetFileAttributesW(path.c_str());
  if (attributes == INVALID_FILE_ATTRIBUTES) return std::nullopt;
  if ((attributes & FILE_ATTRIBUTE_REPARSE_POINT) == 0) return attributes;
  const Handle target(
      CreateFileW(path.c_str(), 0, kShareAll, nullptr, OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr));
  BY_HANDLE_FILE_INFORMATION information;
  if (!target.valid() || !GetFileInformationByHandle(target.get(), &information)) return std::nullopt;
  return information.dwFileAttributes;
}

bool IsFolder(const std::wstring& path) {
  const auto attributes = Attributes(path);
  return attributes && (*attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
}

Status FolderInTheWay(const std::string& path) { return {StatusKind::kFailed, path + ": It is a folder"}; }

// Returns whether another program may hold the file only for a moment, as virus scanners do.
bool MayPass(DWORD error, const std::wstring& target) {
  if (error == ERROR_SHARING_VIOLATION) return true;
  if (error != ERROR_ACCESS_DENIED) return false;
  const DWORD attributes = GetFileAttributesW(target.c_str());
  return attributes == INVALID_FILE_ATTRIBUTES ||
         (attributes & (FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_DIRECTORY)) == 0;
}

// Renames over an existing target, in several attempts. Returns ERROR_SUCCESS, or the error of the last attempt.
DWORD MoveOver(const std::wstring& from, const std::wstring& to, const std::function<void()>& pause) {
  constexpr int kTries = 10;
  for (int tries = 1;; ++tries) {
    if (MoveFileExW(from.c_str(), to.c_str(), MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH)) return ERROR_SUCCESS;
    const DWORD error = GetLastError();
    if (tries == kTries || !MayPass(error, to)) return error;
    pause();
  }
}

class Replacement final : public FileReplacement {
 public:
  Replacement(std::string path, std::wstring target, std::wstring temporary, Handle file, std::function<void()> pause)
      : path_(std::move(path)),
        target_(std::move(target)),
        temporary_(std::move(temporary)),
        file_(std::move(file)),
        pause_(std::move(pause)) {
    buffer_.reserve(kBlock);
  }
  ~Replacement() override {
    file_.Close();
    if (!committed_) DeleteFileW(temporary_.c_str());
  }
  Replacement(const Replacement&) = delete;
  Replacement& operator=(const Replacement&) = delete;

  Status Write(std::string_view bytes) override {
    while (status_.ok() && !bytes.empty()) {
      const std::size_t piece = std::min(bytes.size(), kBlock - buffer_.size());
      buffer_.append(bytes.substr(0, piece));
      bytes.remove_prefix(piece);
      if (buffer_.size() == kBlock) Flush();
    }
    return status_;
  }

  Status Commit() override {
    Flush();
    if (status_.ok() && (!FlushFileBuffers(file_.get()) || !file_.Close())) status_ = LastError(path_);
    if (!status_.ok() || committed_) return status_;
    const DWORD error = MoveOver(temporary_, target_, pause_);
    committed_ = error == ERROR_SUCCESS;
    if (!committed_) status_ = SystemError(path_, error);
    return status_;
  }

 private:
  void Flush() {
    std::size_t done = 0;
    while (status_.ok() && done < buffer_.size()) {
      DWORD written = 0;
      if (!WriteFile(file_.get(), buffer_.data() + done, static_cast<DWORD>(buffer_.size() - done), &written,
                     nullptr)) {
        status_ = LastError(path_);
      } else if (written == 0) {
        status_ = SystemError(path_, ERROR_DISK_FULL);
      }
      done += written;
    }
    buffer_.clear();
  }

  const std::string path_;
  const std::wstring target_, temporary_;
  Handle file_;
  const std::function<void()> pause_;
  std::string buffer_;
  Status status_;
  bool committed_ = false;
};

class Win32GrowingFile final : public GrowingFile {
 public:
  Win32GrowingFile(std::string path, Handle file) : path_(std::move(path)), file_(std::move(file)) {}

  Status Append(std::string_view bytes) override {
    const std::int64_t length = length_ + static_cast<std::int64_t>(bytes.size());
    while (!bytes.empty()) {
      const auto piece = static_cast<DWORD>(std::min<std::size_t>(bytes.size(), 1u << 30));
      DWORD written = 0;
      if (!WriteFile(file_.get(), bytes.data(), piece, &written, nullptr)) return TakeBack(GetLastError());
      if (written == 0) return TakeBack(ERROR_DISK_FULL);
      bytes.remove_prefix(written);
    }
    length_ = length;
    return {};
  }

  Status Flush() override { return FlushFileBuffers(file_.get()) ? Status() : LastError(path_); }

 private:
  Status TakeBack(DWORD error) {
    LARGE_INTEGER length;
    length.QuadPart = length_;
    if (SetFilePointerEx(file_.get(), length, nullptr, FILE_BEGIN)) SetEndOfFile(file_.get());
    return SystemError(path_, error);
  }

  const std::string path_;
  const Handle file_;
  std::int64_t length_ = 0;
};

class HeldLock final : public FolderLock {
 public:
  explicit HeldLock(Handle file) : file_(std::move(file)) {}

 private:
  Handle file_;
};

class HandleFile final : public ReadableFile {
 public:
  HandleFile(Handle file, const BY_HANDLE_FILE_INFORMATION& about, bool plain, std::string path)
      : file_(std::move(file)), about_(about), plain_(plain), path_(std::move(path)) {}

  [[nodiscard]] std::optional<std::uint64_t> size() const override {
    if (!plain_) return std::nullopt;
    return static_cast<std::uint64_t>(about_.nFileSizeHigh) << 32 | about_.nFileSizeLow;
  }
  [[nodiscard]] std::int64_t modified() const override {
    constexpr std::int64_t kSecondsTo1970 = 11'644'473'600;  // the system counts from 1601
    return plain_ ? Ticks() / kTicksASecond - kSecondsTo1970 : 0;
  }
  [[nodiscard]] std::int64_t modified_nanoseconds() const override {
    return plain_ ? Ticks() % kTicksASecond * (1'000'000'000 / kTicksASecond) : 0;
  }
  [[nodiscard]] Result<std::size_t> ReadAt(std::uint64_t offset, char* buffer, std::size_t size) const override {
    std::size_t done = 0;
    while (done < size) {
      OVERLAPPED place{};  // says where to read; the call waits all the same
      place.Offset = static_cast<DWORD>(offset + done);
      place.OffsetHigh = static_cast<DWORD>((offset + done) >> 32);
      const auto wanted = static_cast<DWORD>(std::min<std::size_t>(size - done, 1u << 30));
      DWORD got = 0;
      if (!ReadFile(file_.get(), buffer + done, wanted, &got, plain_ ? &place : nullptr)) {
        const DWORD error = GetLastError();
        if (error == ERROR_HANDLE_EOF || error == ERROR_BROKEN_PIPE) break;
        return SystemError(path_, error);
      }
      if (got == 0) break;
      done += got;
    }
    return done;
  }

 private:
  static constexpr std::int64_t kTicksASecond = 10'000'000;
  [[nodiscard]] std::int64_t Ticks() const {
    return static_cast<std::int64_t>(static_cast<std::uint64_t>(about_.ftLastWriteTime.dwHighDateTime) << 32 |
                                     about_.ftLastWriteTime.dwLowDateTime);
  }

  const Handle file_;
  const BY_HANDLE_FILE_INFORMATION about_;
  const bool plain_;
  const std::string path_;
};

// Returns the folder of a path with its last separator, or "" for the current folder.
std::wstring FolderOf(const std::wstring& path) { return path.substr(0, path.find_last_of(L"\\:") + 1); }

constexpr std::wstring_view kTemporary = L"~quenlar-";

// Returns a name that no other file of the folder has. The number of the process is part of it.
std::wstring TemporaryName(const std::wstring& folder, unsigned number) {
  return std::wstring(folder).append(kTemporary) + std::to_wstring(GetCurrentProcessId()) + L"-" +
         std::to_wstring(number) + L".tmp";
}

bool IsRunning(DWORD process) {
  const Handle running(OpenProcess(SYNCHRONIZE, FALSE, process));
  if (!running.valid()) return GetLastError() != ERROR_INVALID_PARAMETER;  // anything else says that there is one
  return WaitForSingleObject(running.get(), 0) == WAIT_TIMEOUT;
}

// Deletes the temporary files of processes that were cut off.
void RemoveLeftovers(const std::wstring& folder) {
  WIN32_FIND_DATAW found;
  const HANDLE search = FindFirstFileW(std::wstring(folder).append(kTemporary).append(L"*.tmp").c_str(), &found);
  if (search == INVALID_HANDLE_VALUE) return;
  do {
    const DWORD owner = std::wcstoul(found.cFileName + kTemporary.size(), nullptr, 10);
    if (owner != 0 && !IsRunning(owner)) DeleteFileW((folder + found.cFileName).c_str());
  } while (FindNextFileW(search, &found));
  FindClose(search);
}

void PauseBetweenTries() {
  Sleep(20);  // check: sleeping the system tells nobody when another program lets go of a file
}

}  // namespace

Win32Files::Win32Files() : Win32Files(PauseBetweenTries) {}

PathKind Win32Files::KindOf(const std::string& path) const {
  const DWORD attributes = GetFileAttributesW(NativePath(path).c_str());
  if (attributes == INVALID_FILE_ATTRIBUTES) return PathKind::kNothing;
  if ((attributes & (FILE_ATTRIBUTE_REPARSE_POINT | FILE_ATTRIBUTE_DEVICE)) != 0) return PathKind::kOther;
  return (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0 ? PathKind::kFolder : PathKind::kFile;
}

bool Win32Files::FileExists(const std::string& path) const {
  const auto attributes = Attributes(NativePath(path));
  return attributes && (*attributes & (FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_DEVICE)) == 0;
}

bool Win32Files::FolderExists(const std::string& path) const { return IsFolder(NativePath(path)); }

Result<std::vector<std::string>> Win32Files::Names(const std::string& folder) const {
  WIN32_FIND_DATAW entry;
  const HANDLE search = FindFirstFileW((NativePath(folder) + L"\\*").c_str(), &entry);
  if (search == INVALID_HANDLE_VALUE) return LastError(folder);
  const std::unique_ptr<void, BOOL(WINAPI*)(HANDLE)> closer(search, FindClose);
  std::vector<std::string> names;
  do {
    const std::string name = win32::FromWide(entry.cFileName);
    if (name != "." && name != "..") names.push_back(name);
  } while (FindNextFileW(search, &entry));
  if (GetLastError() != ERROR_NO_MORE_FILES) return LastError(folder);
  std::sort(names.begin(), names.end());
  return names;
}

Status Win32Files::MakeFolder(const std::string& path) {
  const std::wstring native = NativePath(path);
  if (CreateDirectoryW(native.c_str(), nullptr)) return {};
  const DWORD error = GetLastError();
  // Not only "exists already": a drive's root, for one, is refused as denied.
  return IsFolder(native) ? Status() : SystemError(path, error);
}

Status Win32Files::Read(const std::string& path, const std::function<bool(std::string_view bytes)>& block) const {
  const std::wstring native = NativePath(path);
  const Handle file(
      CreateFileW(native.c_str(), GENERIC_READ, kShareAll, nullptr, OPEN_EXISTING, FILE_FLAG_SEQUENTIAL_SCAN, nullptr));
  if (!file.valid()) {
    const DWORD error = GetLastError();
    return IsFolder(native) ? FolderInTheWay(path) : SystemError(path, error);
  }
  if (GetFileType(file.get()) != FILE_TYPE_DISK) return {StatusKind::kFailed, path + ": It is no plain file"};
  const auto buffer = std::make_unique<char[]>(kBlock);
  for (;;) {
    DWORD bytes = 0;
    if (!ReadFile(file.get(), buffer.get(), kBlock, &bytes, nullptr)) return LastError(path);
    if (bytes == 0 || !block(std::string_view(buffer.get(), bytes))) return {};
  }
}

Result<std::unique_ptr<ReadableFile>> Win32Files::Open(const std::string& path) const {
  const std::wstring native = NativePath(path);
  Handle file(CreateFileW(native.c_str(), GENERIC_READ, kShareAll, nullptr, OPEN_EXISTING, 0, nullptr));
  if (!file.valid()) {
    const DWORD error = GetLastError();
    return IsFolder(native) ? FolderInTheWay(path) : SystemError(path, error);
  }
  BY_HANDLE_FILE_INFORMATION about{};
  const bool plain = GetFileType(file.get()) == FILE_TYPE_DISK;
  if (plain && !GetFileInformationByHandle(file.get(), &about)) return LastError(path);
  return std::unique_ptr<ReadableFile>(std::make_unique<HandleFile>(std::move(file), about, plain, path));
}

Result<std::unique_ptr<FileReplacement>> Win32Files::Replace(const std::string& path) {
  static std::atomic<unsigned> next_number = 0;  // of the process, as its id is
  const std::wstring target = NativePath(path);
  if (IsFolder(target)) return FolderInTheWay(path);
  const std::wstring folder = FolderOf(target);
  if (swept_.insert(folder).second) RemoveLeftovers(folder);
  for (;;) {
    const std::wstring temporary = TemporaryName(folder, next_number++);
    Handle file(CreateFileW(temporary.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_NEW, FILE_ATTRIBUTE_NORMAL, nullptr));
    if (file.valid()) {
      return std::unique_ptr<FileReplacement>(
          std::make_unique<Replacement>(path, target, temporary, std::move(file), pause_));
    }
    if (GetLastError() != ERROR_FILE_EXISTS) return LastError(path);
  }
}

Result<std::unique_ptr<GrowingFile>> Win32Files::Create(const std::string& path) {
  const std::wstring native = NativePath(path);
  Handle file(CreateFileW(native.c_str(), GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_DELETE, nullptr, CREATE_NEW,
                          FILE_ATTRIBUTE_NORMAL, nullptr));
  if (file.valid()) {
    return std::unique_ptr<GrowingFile>(std::make_unique<Win32GrowingFile>(path, std::move(file)));
  }
  const DWORD error = GetLastError();
  // An existing folder counts as denied.
  if (error == ERROR_FILE_EXISTS || error == ERROR_ALREADY_EXISTS || IsFolder(native)) {
    return Status(StatusKind::kBusy, path + ": it exists");
  }
  return SystemError(path, error);
}

Status Win32Files::Delete(const std::string& path) {
  const std::wstring native = NativePath(path);
  if (DeleteFileW(native.c_str())) return {};
  const DWORD error = GetLastError();
  return IsFolder(native) ? FolderInTheWay(path) : SystemError(path, error);
}

Status Win32Files::Rename(const std::string& from, const std::string& to) {
  const DWORD error = MoveOver(NativePath(from), NativePath(to), pause_);
  return error == ERROR_SUCCESS ? Status() : SystemError(from, error);
}

Result<std::unique_ptr<FolderLock>> Win32Files::Lock(const std::string& folder, const std::string& lock_name) {
  const std::string path = folder + "\\" + lock_name;
  Handle file(CreateFileW(NativePath(path).c_str(), GENERIC_READ | GENERIC_WRITE, 0, nullptr, OPEN_ALWAYS,
                          FILE_ATTRIBUTE_NORMAL | FILE_FLAG_DELETE_ON_CLOSE, nullptr));
  if (!file.valid()) return LastError(path);
  return std::unique_ptr<FolderLock>(std::make_unique<HeldLock>(std::move(file)));
}

}  // namespace quenlar
