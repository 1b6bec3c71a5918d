#include "scratch_win32.h"

#include <algorithm>
#include <atomic>
#include <filesystem>

#include "platform/win32/files.h"
#include "platform/win32/wide.h"

namespace quenlar {
namespace {

std::wstring UniqueName() {
  static std::atomic<int> number = 0;
  return L"QuenlarTest-" + std::to_wstring(GetCurrentProcessId()) + L"-" + std::to_wstring(++number);
}

// With all that is in it. `folder` has the prefix that lets a path be of any length.
void RemoveTree(const std::wstring& folder) {
  WIN32_FIND_DATAW entry;
  const HANDLE search = FindFirstFileW((folder + L"\\*").c_str(), &entry);
  if (search == INVALID_HANDLE_VALUE) return;
  do {
    const std::wstring name = entry.cFileName, path = folder + L"\\" + name;
    if (name == L"." || name == L"..") continue;
    if ((entry.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0) {
      RemoveTree(path);
    } else {
      SetFileAttributesW(path.c_str(), FILE_ATTRIBUTE_NORMAL);
      DeleteFileW(path.c_str());
    }
  } while (FindNextFileW(search, &entry));
  FindClose(search);
  RemoveDirectoryW(folder.c_str());
}

void RemoveAll(std::filesystem::path folder) { RemoveTree(L"\\\\?\\" + folder.make_preferred().native()); }

}  // namespace

std::vector<std::string> NamesIn(const std::string& folder) {
  std::vector<std::string> names;
  for (const auto& entry : std::filesystem::directory_iterator(win32::ToWide(folder))) {
    names.push_back(win32::FromWide(entry.path().filename().wstring()));
  }
  std::sort(names.begin(), names.end());
  return names;
}

ScratchFolder::ScratchFolder() {
  const auto folder = std::filesystem::temp_directory_path() / UniqueName();
  RemoveAll(folder);  // of a process with the same number that was cut off
  std::filesystem::create_directory(folder);
  path_ = win32::FromWide(folder.generic_wstring());
}

ScratchFolder::~ScratchFolder() { RemoveAll(win32::ToWide(path_)); }

ScratchRegistry::ScratchRegistry() : name_(L"Software\\" + UniqueName()) {
  // The system finds its cryptography in the real registry, and keeps what it has found.
  BYTE hash[20];
  DWORD size = sizeof hash;
  CryptHashCertificate(0, CALG_SHA1, 0, hash, 0, hash, &size);
  for (const HKEY root : {HKEY_LOCAL_MACHINE, HKEY_CURRENT_USER}) {
    const std::wstring path = name_ + (root == HKEY_LOCAL_MACHINE ? L"\\Machine" : L"\\User");
    HKEY key = nullptr;
    RegCreateKeyExW(HKEY_CURRENT_USER, path.c_str(), 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, &key, nullptr);
    RegOverridePredefKey(root, key);
    RegCloseKey(key);
  }
}

ScratchRegistry::~ScratchRegistry() {
  RegOverridePredefKey(HKEY_LOCAL_MACHINE, nullptr);
  RegOverridePredefKey(HKEY_CURRENT_USER, nullptr);
  RegDeleteTreeW(HKEY_CURRENT_USER, name_.c_str());
}

TrustedAuthority::TrustedAuthority(const std::string& pem_path) : store_(CertOpenSystemStoreW(0, L"ROOT")) {
  // A run that was killed leaves its certificates, which have the same name and another key.
  DeleteAll();
  const auto pem = ReadWhole(Win32Files(), pem_path);
  constexpr std::string_view kBegin = "-----BEGIN CERTIFICATE-----";
  for (std::size_t at = pem.value().find(kBegin); at != std::string::npos; at = pem.value().find(kBegin, at + 1)) {
    DWORD size = 0;
    CryptStringToBinaryA(pem.value().c_str() + at, 0, CRYPT_STRING_BASE64HEADER, nullptr, &size, nullptr, nullptr);
    std::vector<BYTE> bytes(size);
    CryptStringToBinaryA(pem.value().c_str() + at, 0, CRYPT_STRING_BASE64HEADER, bytes.data(), &size, nullptr, nullptr);
    CertAddEncodedCertificateToStore(store_, X509_ASN_ENCODING, bytes.data(), size, CERT_STORE_ADD_REPLACE_EXISTING,
                                     nullptr);
  }
  CertControlStore(store_, 0, CERT_STORE_CTRL_COMMIT, nullptr);  // other processes see only what has been written
}

TrustedAuthority::~TrustedAuthority() {
  DeleteAll();
  CertCloseStore(store_, 0);
}

void TrustedAuthority::DeleteAll() {
  const auto next = [&] {
    return CertFindCertificateInStore(store_, X509_ASN_ENCODING, 0, CERT_FIND_SUBJECT_STR_W, L"Test Authority",
                                      nullptr);
  };
  while (const PCCERT_CONTEXT found = next()) CertDeleteCertificateFromStore(found);
  CertControlStore(store_, 0, CERT_STORE_CTRL_COMMIT, nullptr);
}

}  // namespace quenlar
