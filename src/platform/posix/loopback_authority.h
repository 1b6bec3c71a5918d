// Certificates for hosts that do not exist, of an authority that lives as long as this object.
#pragma once

#include <atomic>
#include <memory>
#include <string>

#include <openssl/ssl.h>

namespace quenlar {

struct OpenSslFree {
  void operator()(EVP_PKEY* key) const { EVP_PKEY_free(key); }
  void operator()(X509* certificate) const { X509_free(certificate); }
  void operator()(SSL_CTX* context) const { SSL_CTX_free(context); }
  void operator()(SSL* tls) const { SSL_free(tls); }
};
template <typename T>
using OpenSslPointer = std::unique_ptr<T, OpenSslFree>;

class LoopbackAuthority {
 public:
  // Makes a key and a certificate that are valid for a day. What OpenSSL cannot do leaves the authority without a
  // certificate.
  LoopbackAuthority();

  // PEM; empty where there is none.
  [[nodiscard]] std::string Certificate() const;

  // What a server of that host speaks TLS with; null where OpenSSL cannot make it. May be called from several threads.
  [[nodiscard]] OpenSslPointer<SSL_CTX> ContextFor(const std::string& host) const;

 private:
  // For `host`, or for the authority itself where it is empty.
  [[nodiscard]] OpenSslPointer<X509> Certify(const std::string& host) const;

  mutable std::atomic<long> serial_ = 1;  // of the next certificate
  OpenSslPointer<EVP_PKEY> key_;          // of the authority and of every host: nobody else ever sees it
  OpenSslPointer<X509> certificate_;
};

}  // namespace quenlar
