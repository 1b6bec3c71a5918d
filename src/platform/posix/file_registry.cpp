#include "platform/posix/file_registry.h"

#include <new>
#include <utility>

#include <poll.h>

namespace quenlar {
namespace {

constexpr std::size_t kMaxCharacters = 254;        // of a value that is read back
constexpr std::uint64_t kMaxFileBytes = 64 << 20;  // a file beyond it is not ours
constexpr int kLockAttempts = 100;
constexpr int kLockPauseMilliseconds = 10;

std::string FolderOf(const std::string& path) {
  const std::size_t slash = path.rfind('/');
  return slash == std::string::npos ? "." : slash == 0 ? "/" : path.substr(0, slash);
}

std::string FirstCharacters(const std::string& text, std::size_t count) {
  std::size_t characters = 0;
  for (std::size_t at = 0; at < text.size(); ++at) {
    const bool starts_character = (static_cast<unsigned char>(text[at]) & 0xC0) != 0x80;
    if (starts_character && ++characters > count) return text.substr(0, at);
  }
  return text;
}

void MakeFolders(Files& files, const std::string& folder) {
  for (std::size_t at = folder.find('/', 1); at != std::string::npos; at = folder.find('/', at + 1)) {
    files.MakeFolder(folder.substr(0, at)).Ignore("the file's own failure tells");
  }
  files.MakeFolder(folder).Ignore("the file's own failure tells");
}

// Another program holds the lock for the length of one small write.
Result<std::unique_ptr<FolderLock>> LockPatiently(Files& files, const std::string& folder, const std::string& name) {
  for (int attempt = 1;; ++attempt) {
    auto lock = files.Lock(folder, name);
    if (lock.ok() || lock.status().kind() != StatusKind::kBusy || attempt == kLockAttempts) return lock;
    poll(nullptr, 0, kLockPauseMilliseconds);
  }
}

}  // namespace

FileRegistry::FileRegistry(Files& files, EventLoop& loop, std::string path)
    : files_(files),
      loop_(loop),
      path_(std::move(path)),
      folder_(FolderOf(path_)),
      name_(path_.substr(path_.rfind('/') + 1)) {
  const auto text = ReadWhole(files_, path_, kMaxFileBytes);
  if (text.ok()) contents_ = RegistryContents::Parse(text.value()).contents;
  if (text.status().kind() != StatusKind::kNotFound) unread_ = text.status();
}

FileRegistry::~FileRegistry() { FileRegistry::Flush().Ignore("there is nobody left to tell it"); }

void FileRegistry::SaveRegValue(const std::string& key, const std::string& name, const std::string& text) {
  Make({.key = key, .name = name, .text = text});
}

std::string FileRegistry::GetRegValue(const std::string& key, const std::string& name) const {
  if (!contents_.HasKey(key)) return "";
  const std::string* text = contents_.Find(key, name);
  return text == nullptr ? std::string(kMaxCharacters, ' ') : FirstCharacters(*text, kMaxCharacters);
}

void FileRegistry::DeleteRegKey(const std::string& key) { Make({.deletes_key = true, .key = key}); }

bool FileRegistry::KeyExists(const std::string& key) const { return !unread_.ok() || contents_.HasKey(key); }

bool FileRegistry::ValueExists(const std::string& key, const std::string& name) const {
  return contents_.Find(key, name) != nullptr;
}

void FileRegistry::Make(Change change) {
  Apply(change, contents_);
  changes_.push_back(std::move(change));
  if (std::exchange(flush_posted_, true)) return;
  loop_.Post([this, alive = std::weak_ptr(alive_)] {
    if (!alive.expired()) Flush().Ignore("who must know asks for himself");
  });
}

Status FileRegistry::Flush() {
  flush_posted_ = false;
  try {
    return changes_.empty() ? unread_ : WriteChanges();
  } catch (const std::bad_alloc&) {
    return {StatusKind::kFailed, "no memory left"};  // so short that it takes none
  }
}

Status FileRegistry::WriteChanges() {
  MakeFolders(files_, folder_);
  const auto lock = LockPatiently(files_, folder_, name_ + ".lock");
  if (!lock.ok()) return lock.status();
  const auto text = ReadWhole(files_, path_, kMaxFileBytes);
  if (!text.ok() && text.status().kind() != StatusKind::kNotFound) return text.status();
  auto [contents, damaged] = RegistryContents::Parse(text.ok() ? text.value() : "");
  if (damaged || (!unread_.ok() && text.ok())) {
    if (Status kept = WriteWhole(files_, path_ + ".bak", text.value()); !kept.ok()) return kept;
  }
  for (const Change& change : changes_) Apply(change, contents);
  if (Status written = WriteWhole(files_, path_, contents.Format()); !written.ok()) return written;
  contents_ = std::move(contents);
  unread_ = Status::Ok();
  changes_.clear();
  return Status::Ok();
}

void FileRegistry::Apply(const Change& change, RegistryContents& contents) {
  if (change.deletes_key) {
    contents.Delete(change.key);
  } else {
    contents.Save(change.key, change.name, change.text);
  }
}

}  // namespace quenlar
