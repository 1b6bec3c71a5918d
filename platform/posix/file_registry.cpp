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
  unread_ = !text.ok() && text.status().kind() != StatusKind::kNotFound;
}

FileRegistry::~FileRegistry() { Flush(); }

void FileRegistry::SaveRegValue(const std::string& key, const std::string& name, const std::string& text) {
  Make({.key = key, .name = name, .text = text});
}

std::string FileRegistry::GetRegValue(const std::string& key, const std::string& name) const {
  if (!contents_.HasKey(key)) return "";
  const std::string* text = contents_.Find(key, name);
  return text == nullptr ? std::string(kMaxCharacters, ' ') : FirstCharacters(*text, kMaxCharacters);
}

void FileRegistry::DeleteRegKey(const std::string& key) { Make({.deletes_key = true, .key = key}); }

bool FileRegistry::KeyExists(const std::string& key) const { return unread_ || contents_.HasKey(key); }

bool FileRegistry::ValueExists(const std::string& key, const std::string& name) const {
  return contents_.Find(key, name) != nullptr;
}

void FileRegistry::Make(Change change) {
  Apply(change, contents_);
  changes_.push_back(std::move(change));
  if (std::exchange(flush_posted_, true)) return;
  loop_.Post([this, alive = std::weak_ptr(alive_)] {
    if (!alive.expired()) Flush();
  });
}

// Failures are silent: the values hold for this program, and the next flush tries again.
void FileRegistry::Flush() {
  flush_posted_ = false;
  if (changes_.empty()) return;
  try {
    WriteChanges();
  } catch (const std::bad_alloc&) {
  }
}

void FileRegistry::WriteChanges() {
  MakeFolders(files_, folder_);
  const auto lock = LockPatiently(files_, folder_, name_ + ".lock");
  if (!lock.ok()) return;
  const auto text = ReadWhole(files_, path_, kMaxFileBytes);
  if (!text.ok() && text.status().kind() != StatusKind::kNotFound) return;
  auto [contents, damaged] = RegistryContents::Parse(text.ok() ? text.value() : "");
  if ((damaged || (unread_ && text.ok())) && !WriteWhole(files_, path_ + ".bak", text.value()).ok()) return;
  for (const Change& change : changes_) Apply(change, contents);
  if (!WriteWhole(files_, path_, contents.Format()).ok()) return;
  contents_ = std::move(contents);
  unread_ = false;
  changes_.clear();
}

void FileRegistry::Apply(const Change& change, RegistryContents& contents) {
  if (change.deletes_key) {
    contents.Delete(change.key);
  } else {
    contents.Save(change.key, change.name, change.text);
  }
}

}  // namespace quenlar
