#include "platform/win32/registry.h"

#include <algorithm>

#include "platform/win32/windows_api.h"

namespace quenlar {
namespace {

constexpr DWORD kBufferSize = 255;

HKEY RootKey(Win32Registry::Root root) {
  return root == Win32Registry::Root::kMachine ? HKEY_LOCAL_MACHINE : HKEY_CURRENT_USER;
}

Win32Registry::Access MachineAccess(const std::string& path) {
  HKEY key = nullptr;
  const LONG outcome = RegOpenKeyExA(HKEY_LOCAL_MACHINE, path.c_str(), 0, KEY_ALL_ACCESS, &key);
  if (outcome == ERROR_SUCCESS) RegCloseKey(key);
  if (outcome == ERROR_FILE_NOT_FOUND) return Win32Registry::Access::kNoKey;
  return outcome == ERROR_SUCCESS ? Win32Registry::Access::kWritable : Win32Registry::Access::kReadOnly;
}

}  // namespace

// A key opened for reading, closed at the end of its scope.
class Win32Registry::OpenKey {
 public:
  OpenKey(const Win32Registry& registry, const std::string& key) {
    const std::string path = registry.code_page_.FromUtf8(key);
    outcome_ = RegOpenKeyExA(RootKey(registry.root_), path.c_str(), 0, KEY_READ, &key_);
    if (outcome_ != ERROR_SUCCESS) key_ = nullptr;
  }
  ~OpenKey() {
    if (key_) RegCloseKey(key_);
  }
  OpenKey(const OpenKey&) = delete;
  OpenKey& operator=(const OpenKey&) = delete;

  [[nodiscard]] bool open() const { return key_ != nullptr; }
  [[nodiscard]] bool missing() const { return outcome_ == ERROR_FILE_NOT_FOUND || outcome_ == ERROR_PATH_NOT_FOUND; }
  [[nodiscard]] HKEY get() const { return key_; }

 private:
  HKEY key_ = nullptr;
  LONG outcome_ = ERROR_SUCCESS;
};

Win32Registry::Root Win32Registry::WritableRoot(const std::string& key) { return WritableRoot(key, MachineAccess); }

Win32Registry::Root Win32Registry::WritableRoot(std::string key,
                                                const std::function<Access(const std::string& path)>& access) {
  // The nearest key that exists decides whether keys can be made below it.
  for (;;) {
    const Access found = access(key);
    if (found != Access::kNoKey) return found == Access::kWritable ? Root::kMachine : Root::kUser;
    const std::size_t separator = key.find_last_of('\\');
    if (separator == std::string::npos) return Root::kUser;
    key.resize(separator);
  }
}

void Win32Registry::SaveRegValue(const std::string& key, const std::string& name, const std::string& text) {
  HKEY open = nullptr;
  if (RegCreateKeyExA(RootKey(root_), code_page_.FromUtf8(key).c_str(), 0, nullptr, REG_OPTION_NON_VOLATILE,
                      KEY_ALL_ACCESS, nullptr, &open, nullptr) != ERROR_SUCCESS) {
    return;
  }
  const std::string bytes = code_page_.FromUtf8(text);
  // The count leaves out the NUL at the end of the buffer. Values that are already stored look the same, and the
  // system adds the NUL when it reads. Kept: RegistryContract.AValueIsReadBackAsItWasWritten.
  RegSetValueExA(open, code_page_.FromUtf8(name).c_str(), 0, REG_SZ, reinterpret_cast<const BYTE*>(bytes.c_str()),
                 static_cast<DWORD>(bytes.size()));
  RegCloseKey(open);
}

std::string Win32Registry::GetRegValue(const std::string& key, const std::string& name) const {
  const OpenKey open(*this, key);
  if (!open.open()) return {};
  std::string buffer(kBufferSize, ' ');
  DWORD size = kBufferSize;
  const std::string value_name = code_page_.FromUtf8(name);
  const auto query = [&] {
    return RegQueryValueExA(open.get(), value_name.c_str(), nullptr, nullptr, reinterpret_cast<BYTE*>(buffer.data()),
                            &size);
  };
  // A missing value is not a failure: the blanks stay as they are.
  if (query() == ERROR_MORE_DATA) {
    buffer.assign(size, ' ');
    if (query() != ERROR_SUCCESS) return {};
  }
  if (size <= 1) return {};
  buffer.resize(std::min<std::size_t>(size - 1, kBufferSize - 1));
  return code_page_.ToUtf8(std::move(buffer));
}

void Win32Registry::DeleteRegKey(const std::string& key) {
  const OpenKey open(*this, key);
  if (open.open()) RegDeleteKeyA(open.get(), "");  // the empty name is the open key itself
}

bool Win32Registry::KeyExists(const std::string& key) const { return !OpenKey(*this, key).missing(); }

bool Win32Registry::ValueExists(const std::string& key, const std::string& name) const {
  const OpenKey open(*this, key);
  return open.open() && RegQueryValueExA(open.get(), code_page_.FromUtf8(name).c_str(), nullptr, nullptr, nullptr,
                                         nullptr) == ERROR_SUCCESS;
}

}  // namespace quenlar
