#include "platform/sha256.h"

#include <new>

#include <openssl/evp.h>

namespace quenlar {

std::string Sha256Hex(std::string_view bytes) {
  unsigned char digest[EVP_MAX_MD_SIZE];
  unsigned int size = 0;
  if (EVP_Digest(bytes.data(), bytes.size(), digest, &size, EVP_sha256(), nullptr) != 1) throw std::bad_alloc();
  return LowerHex({reinterpret_cast<const char*>(digest), size});
}

}  // namespace quenlar
