#include "platform/sha256.h"

#include <new>

#include "platform/win32/windows_api.h"
// Behind the system's own types.
#include <bcrypt.h>

namespace quenlar {
namespace {

// The system's provider of the algorithm.
class Sha256Provider {
 public:
  Sha256Provider() {
    if (BCryptOpenAlgorithmProvider(&handle_, BCRYPT_SHA256_ALGORITHM, nullptr, 0) != 0) throw std::bad_alloc();
  }
  ~Sha256Provider() { BCryptCloseAlgorithmProvider(handle_, 0); }
  Sha256Provider(const Sha256Provider&) = delete;
  Sha256Provider& operator=(const Sha256Provider&) = delete;
  [[nodiscard]] BCRYPT_ALG_HANDLE get() const { return handle_; }

 private:
  BCRYPT_ALG_HANDLE handle_ = nullptr;
};

}  // namespace

std::string Sha256Hex(std::string_view bytes) {
  const Sha256Provider provider;
  constexpr ULONG kDigestBytes = 32;
  UCHAR digest[kDigestBytes];
  std::string copy(bytes);  // the system takes a pointer that may write
  if (BCryptHash(provider.get(), nullptr, 0, reinterpret_cast<PUCHAR>(copy.data()), static_cast<ULONG>(copy.size()),
                 digest, kDigestBytes) != 0) {
    throw std::bad_alloc();
  }
  return LowerHex({reinterpret_cast<const char*>(digest), kDigestBytes});
}

}  // namespace quenlar
