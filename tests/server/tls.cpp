#include "tls.h"

#include <thread>

#include <openssl/evp.h>
#include <openssl/pem.h>
#include <openssl/ssl.h>
#include <openssl/x509v3.h>
#include <unistd.h>

#include "listener.h"

namespace quenlar::hostile {
namespace {

constexpr long kDay = 24 * 60 * 60;

// The objects live as long as the process.
struct Identity {
  EVP_PKEY* key = nullptr;
  X509* certificate = nullptr;
};

void AddExtension(X509* certificate, X509* issuer, int id, const char* value) {
  X509V3_CTX context;
  X509V3_set_ctx(&context, issuer, certificate, nullptr, nullptr, 0);
  X509_EXTENSION* extension = X509V3_EXT_conf_nid(nullptr, &context, id, value);
  X509_add_ext(certificate, extension, -1);
  X509_EXTENSION_free(extension);
}

// Signed by `issuer`, or by itself when there is none. `names` as in "IP:127.0.0.1,DNS:localhost".
Identity Certify(const char* subject, const char* names, const Identity* issuer, long from, long until) {
  static long serial = 1;
  Identity identity{EVP_EC_gen("P-256"), X509_new()};
  X509* certificate = identity.certificate;
  X509* signer = issuer != nullptr ? issuer->certificate : certificate;
  X509_set_version(certificate, 2);
  ASN1_INTEGER_set(X509_get_serialNumber(certificate), serial++);
  X509_gmtime_adj(X509_getm_notBefore(certificate), from);
  X509_gmtime_adj(X509_getm_notAfter(certificate), until);
  X509_set_pubkey(certificate, identity.key);
  X509_NAME_add_entry_by_txt(X509_get_subject_name(certificate), "CN", MBSTRING_ASC,
                             reinterpret_cast<const unsigned char*>(subject), -1, -1, 0);
  X509_set_issuer_name(certificate, X509_get_subject_name(signer));
  AddExtension(certificate, signer, NID_basic_constraints, issuer == nullptr ? "critical,CA:TRUE" : "CA:FALSE");
  if (names != nullptr) AddExtension(certificate, signer, NID_subject_alt_name, names);
  X509_sign(certificate, issuer != nullptr ? issuer->key : identity.key, EVP_sha256());
  return identity;
}

std::string Pem(X509* certificate) {
  BIO* memory = BIO_new(BIO_s_mem());
  PEM_write_bio_X509(memory, certificate);
  char* data = nullptr;
  const long size = BIO_get_mem_data(memory, &data);
  std::string pem(data, static_cast<std::size_t>(size));
  BIO_free(memory);
  return pem;
}

// One request, one answer, one orderly end.
void Answer(SSL_CTX* context, int socket, const std::string& answer) {
  SSL* tls = SSL_new(context);
  SSL_set_fd(tls, socket);
  char request[16 * 1024];
  if (SSL_accept(tls) == 1 && SSL_read(tls, request, sizeof request) > 0) {
    SSL_write(tls, answer.data(), static_cast<int>(answer.size()));
    SSL_shutdown(tls);
  }
  SSL_free(tls);
  close(socket);
}

// `asks`: for a certificate of the client's, of whatever kind, or none.
int Serve(const Identity& identity, const std::string& answer, bool asks = false) {
  SSL_CTX* context = SSL_CTX_new(TLS_server_method());
  SSL_CTX_use_certificate(context, identity.certificate);
  SSL_CTX_use_PrivateKey(context, identity.key);
  if (asks) SSL_CTX_set_verify(context, SSL_VERIFY_PEER, [](int, X509_STORE_CTX*) { return 1; });
  const Listener listener = Listen();
  std::thread([context, listener, answer] {
    while (true) {
      const int socket = Accept(listener);
      std::thread([context, socket, answer] { Answer(context, socket, answer); }).detach();
    }
  }).detach();
  return listener.port;
}

}  // namespace

TlsPorts ServeTls(int plain_port) {
  const char* const here = "IP:127.0.0.1,DNS:localhost";
  const std::string page = "HTTP/1.1 200 OK\r\nContent-Length: 11\r\nConnection: close\r\n\r\nsecure page";
  const std::string plain = "Location: http://127.0.0.1:" + std::to_string(plain_port) + "/page\r\n";
  const Identity authority = Certify("Test Authority", nullptr, nullptr, -kDay, 365 * kDay);
  TlsPorts ports;
  ports.authority = Pem(authority.certificate);
  ports.right = Serve(Certify("localhost", here, &authority, -kDay, 365 * kDay), page);
  ports.asks = Serve(Certify("localhost", here, &authority, -kDay, 365 * kDay), page, true);
  ports.expired = Serve(Certify("localhost", here, &authority, -10 * kDay, -kDay), page);
  ports.wrong_name = Serve(Certify("other.example", "DNS:other.example", &authority, -kDay, 365 * kDay), page);
  const Identity stranger = Certify("Unknown Authority", nullptr, nullptr, -kDay, 365 * kDay);
  ports.stranger = Serve(Certify("localhost", here, &stranger, -kDay, 365 * kDay), page);
  ports.downgrade = Serve(Certify("localhost", here, &authority, -kDay, 365 * kDay),
                          "HTTP/1.1 302 Found\r\n" + plain + "Content-Length: 0\r\nConnection: close\r\n\r\n");
  return ports;
}

}  // namespace quenlar::hostile
