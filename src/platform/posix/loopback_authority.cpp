#include "platform/posix/loopback_authority.h"

#include <openssl/evp.h>
#include <openssl/pem.h>
#include <openssl/x509v3.h>

namespace quenlar {
namespace {

constexpr long kDay = 24 * 60 * 60;
constexpr const char* kName = "Authority of the demonstration";

bool AddExtension(X509* certificate, X509* issuer, int id, const std::string& value) {
  X509V3_CTX context;
  X509V3_set_ctx(&context, issuer, certificate, nullptr, nullptr, 0);
  X509_EXTENSION* extension = X509V3_EXT_conf_nid(nullptr, &context, id, value.c_str());
  if (extension == nullptr) return false;
  const bool added = X509_add_ext(certificate, extension, -1) == 1;
  X509_EXTENSION_free(extension);
  return added;
}

}  // namespace

LoopbackAuthority::LoopbackAuthority() : key_(EVP_EC_gen("P-256")), certificate_(Certify("")) {}

OpenSslPointer<X509> LoopbackAuthority::Certify(const std::string& host) const {
  OpenSslPointer<X509> made(X509_new());
  X509* const certificate = made.get();
  if (!key_ || certificate == nullptr) return nullptr;
  X509* const issuer = host.empty() ? certificate : certificate_.get();
  const std::string& name = host.empty() ? std::string(kName) : host;
  const bool filled =
      issuer != nullptr && X509_set_version(certificate, X509_VERSION_3) == 1 &&
      ASN1_INTEGER_set(X509_get_serialNumber(certificate), serial_++) == 1 &&
      X509_gmtime_adj(X509_getm_notBefore(certificate), -kDay) != nullptr &&
      X509_gmtime_adj(X509_getm_notAfter(certificate), kDay) != nullptr &&
      X509_set_pubkey(certificate, key_.get()) == 1 &&
      X509_NAME_add_entry_by_txt(X509_get_subject_name(certificate), "CN", MBSTRING_UTF8,
                                 reinterpret_cast<const unsigned char*>(name.c_str()), -1, -1, 0) == 1 &&
      X509_set_issuer_name(certificate, X509_get_subject_name(issuer)) == 1 &&
      (host.empty() ? AddExtension(certificate, issuer, NID_basic_constraints, "critical,CA:TRUE")
                    : AddExtension(certificate, issuer, NID_subject_alt_name, "DNS:" + host));
  if (!filled || X509_sign(certificate, key_.get(), EVP_sha256()) == 0) return nullptr;
  return made;
}

std::string LoopbackAuthority::Certificate() const {
  BIO* const memory = BIO_new(BIO_s_mem());
  std::string text;
  if (memory != nullptr && certificate_ && PEM_write_bio_X509(memory, certificate_.get()) == 1) {
    char* data = nullptr;
    const long size = BIO_get_mem_data(memory, &data);
    text.assign(data, static_cast<std::size_t>(size));
  }
  BIO_free(memory);
  return text;
}

OpenSslPointer<SSL_CTX> LoopbackAuthority::ContextFor(const std::string& host) const {
  const OpenSslPointer<X509> certificate = Certify(host);
  OpenSslPointer<SSL_CTX> context(SSL_CTX_new(TLS_server_method()));
  const bool ready = certificate && context && SSL_CTX_use_certificate(context.get(), certificate.get()) == 1 &&
                     SSL_CTX_use_PrivateKey(context.get(), key_.get()) == 1;
  return ready ? std::move(context) : nullptr;
}

}  // namespace quenlar
