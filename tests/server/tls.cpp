#include "tls.h"

#include <atomic>
#include <functional>
#include <map>
#include <string>
#include <thread>
#include <utility>

#include <openssl/core_names.h>
#include <openssl/ec.h>
#include <openssl/evp.h>
#include <openssl/param_build.h>
#include <openssl/pem.h>
#include <openssl/ssl.h>
#include <openssl/x509v3.h>
#include <sys/socket.h>
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

// Whether both numbers of the signature have the 32 bytes of the curve. One in 128 signatures has a shorter one.
bool IsFullLength(const X509* certificate) {
  const ASN1_BIT_STRING* signature = nullptr;
  X509_get0_signature(&signature, nullptr, certificate);
  const unsigned char* bytes = signature->data;
  ECDSA_SIG* numbers = d2i_ECDSA_SIG(nullptr, &bytes, signature->length);
  const bool full = BN_num_bytes(ECDSA_SIG_get0_r(numbers)) == 32 && BN_num_bytes(ECDSA_SIG_get0_s(numbers)) == 32;
  ECDSA_SIG_free(numbers);
  return full;
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
  // Wine puts the two numbers of a signature together without the leading zeros that a short one needs, and takes the
  // certificate for a wrong one. Each signature is another one, so one of full length comes soon.
  do {
    X509_sign(certificate, issuer != nullptr ? issuer->key : identity.key, EVP_sha256());
  } while (!IsFullLength(certificate));
  return identity;
}

// The public half of one key and the private half of another: what it signs does not hold under its own public half.
EVP_PKEY* Mismatched(EVP_PKEY* shown, EVP_PKEY* held) {
  unsigned char point[256];
  std::size_t size = 0;
  BIGNUM* secret = nullptr;
  EVP_PKEY_get_octet_string_param(shown, OSSL_PKEY_PARAM_PUB_KEY, point, sizeof point, &size);
  EVP_PKEY_get_bn_param(held, OSSL_PKEY_PARAM_PRIV_KEY, &secret);
  OSSL_PARAM_BLD* parts = OSSL_PARAM_BLD_new();
  OSSL_PARAM_BLD_push_utf8_string(parts, OSSL_PKEY_PARAM_GROUP_NAME, "P-256", 0);
  OSSL_PARAM_BLD_push_octet_string(parts, OSSL_PKEY_PARAM_PUB_KEY, point, size);
  OSSL_PARAM_BLD_push_BN(parts, OSSL_PKEY_PARAM_PRIV_KEY, secret);
  OSSL_PARAM* all = OSSL_PARAM_BLD_to_param(parts);
  EVP_PKEY_CTX* maker = EVP_PKEY_CTX_new_from_name(nullptr, "EC", nullptr);
  EVP_PKEY* key = nullptr;
  EVP_PKEY_fromdata_init(maker);
  EVP_PKEY_fromdata(maker, &key, EVP_PKEY_KEYPAIR, all);
  EVP_PKEY_CTX_free(maker);
  OSSL_PARAM_free(all);
  OSSL_PARAM_BLD_free(parts);
  BN_free(secret);
  return key;
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

// Gives the answer to a request's path, or nothing where the client is to wait in vain. `clients` have sent a byte to
// the port so far, be it only the first one of TLS.
using Answers = std::function<std::string(const std::string& path, int clients)>;

// One request, one answer, one orderly end.
void Answer(SSL_CTX* context, int socket, const Answers& answers, std::atomic<int>& clients) {
  char first = 0;
  if (recv(socket, &first, 1, MSG_PEEK) > 0) ++clients;
  SSL* tls = SSL_new(context);
  SSL_set_fd(tls, socket);
  char request[16 * 1024];
  const int count = SSL_accept(tls) == 1 ? SSL_read(tls, request, sizeof request) : 0;
  if (count > 0) {
    const std::string head(request, static_cast<std::size_t>(count));
    const std::size_t path = head.find(' ') + 1;
    const std::string answer = answers(head.substr(path, head.find(' ', path) - path), clients);
    if (answer.empty()) {
      SSL_read(tls, request, sizeof request);  // until the client goes
    } else {
      SSL_write(tls, answer.data(), static_cast<int>(answer.size()));
      SSL_shutdown(tls);
    }
  }
  SSL_free(tls);
  close(socket);
}

SSL_CTX* ContextOf(const Identity& identity) {
  SSL_CTX* context = SSL_CTX_new(TLS_server_method());
  SSL_CTX_use_certificate(context, identity.certificate);
  SSL_CTX_use_PrivateKey(context, identity.key);
  return context;
}

int Serve(SSL_CTX* context, const Answers& answers) {
  const Listener listener = Listen();
  std::thread([context, listener, answers] {
    std::atomic<int> clients = 0;  // the thread never ends
    while (true) {
      const int socket = Accept(listener);
      std::thread([=, &clients] { Answer(context, socket, answers, clients); }).detach();
    }
  }).detach();
  return listener.port;
}

int Serve(SSL_CTX* context, const std::string& answer) {
  return Serve(context, [answer](const std::string&, int) { return answer; });
}

// A certificate of the client's is asked for, of any kind, or none.
SSL_CTX* Asking(SSL_CTX* context) {
  SSL_CTX_set_verify(context, SSL_VERIFY_PEER, [](int, X509_STORE_CTX*) { return 1; });
  return context;
}

SSL_CTX* AtMost(int version, SSL_CTX* context) {
  SSL_CTX_set_max_proto_version(context, version);
  return context;
}

// Nothing newer than TLS 1.0 is spoken.
SSL_CTX* Old(SSL_CTX* context) {
  SSL_CTX_set_security_level(context, 0);
  SSL_CTX_set_min_proto_version(context, TLS1_VERSION);
  return AtMost(TLS1_VERSION, context);
}

// The answer to the client's first message is noise.
int ServeGarbage() {
  const Listener listener = Listen();
  std::thread([listener] {
    while (true) {
      const int socket = Accept(listener);
      char hello[16 * 1024];
      if (recv(socket, hello, sizeof hello, 0) > 0)
        send(socket, "\x16\x03\x03noise and nothing else", 25, MSG_NOSIGNAL);
      close(socket);
    }
  }).detach();
  return listener.port;
}

// A club's site. "/late" is answered from the second time on.
std::string PageOfTheClub(const std::string& path, int) {
  static const std::map<std::string, std::pair<const char*, const char*>> kPages = {
      {"/robots.txt", {"text/plain", "User-agent: *\nDisallow: /private\n"}},
      {"/index.html",
       {"text/html",
        "<title>Chess club</title>secretary@chess.de <a href=/board.html>board</a> "
        "<a href=/late.html>late</a> <a href=/private/x.html>x</a>"}},
      {"/board.html",
       {"text/html",
        "<title>Board</title><a href='mailto:treasurer@chess.museum'>mail</a> "
        "secretary@chess.de"}},
      {"/late.html", {"text/html", "<title>Late</title>coach@chess.de"}}};
  static std::atomic<int> late = 0;
  if (path == "/late.html" && late++ == 0) return {};
  const auto found = kPages.find(path);
  const std::string type = found == kPages.end() ? "text/plain" : found->second.first;
  const std::string body = found == kPages.end() ? "no such page" : found->second.second;
  return std::string("HTTP/1.1 ") + (found == kPages.end() ? "404 Not Found" : "200 OK") + "\r\nContent-Type: " + type +
         "\r\nContent-Length: " + std::to_string(body.size()) + "\r\nConnection: close\r\n\r\n" + body;
}

}  // namespace

TlsPorts ServeTls(int plain_port) {
  const char* const here = "IP:127.0.0.1,DNS:localhost";
  const std::string page = "HTTP/1.1 200 OK\r\nContent-Length: 11\r\nConnection: close\r\n\r\nsecure page";
  const std::string plain = "Location: http://127.0.0.1:" + std::to_string(plain_port) + "/page\r\n";
  const Identity authority = Certify("Test Authority", nullptr, nullptr, -kDay, 365 * kDay);
  const auto right = [&] { return ContextOf(Certify("localhost", here, &authority, -kDay, 365 * kDay)); };
  TlsPorts ports;
  ports.authority = Pem(authority.certificate);
  ports.right = Serve(right(), page);
  ports.asks = Serve(Asking(right()), page);
  ports.expired = Serve(ContextOf(Certify("localhost", here, &authority, -10 * kDay, -kDay)), page);
  ports.wrong_name =
      Serve(ContextOf(Certify("other.example", "DNS:other.example", &authority, -kDay, 365 * kDay)), page);
  const Identity stranger = Certify("Unknown Authority", nullptr, nullptr, -kDay, 365 * kDay);
  ports.stranger = Serve(ContextOf(Certify("localhost", here, &stranger, -kDay, 365 * kDay)), page);
  ports.not_yet = Serve(ContextOf(Certify("localhost", here, &authority, kDay, 365 * kDay)), page);
  ports.self_signed = Serve(ContextOf(Certify("localhost", here, nullptr, -kDay, 365 * kDay)), page);
  // The name of the authority that is known, and the signature of another one.
  const Identity forger{stranger.key, authority.certificate};
  ports.forged = Serve(ContextOf(Certify("localhost", here, &forger, -kDay, 365 * kDay)), page);
  Identity keyless = Certify("localhost", here, &authority, -kDay, 365 * kDay);
  keyless.key = Mismatched(keyless.key, EVP_EC_gen("P-256"));
  ports.keyless = Serve(ContextOf(keyless), page);
  ports.keyless_tls12 = Serve(AtMost(TLS1_2_VERSION, ContextOf(keyless)), page);
  ports.old = Serve(Old(right()), page);
  ports.garbage = ServeGarbage();
  ports.downgrade = Serve(right(), "HTTP/1.1 302 Found\r\n" + plain + "Content-Length: 0\r\nConnection: close\r\n\r\n");
  ports.counting = Serve(right(), [](const std::string&, int clients) {
    const std::string count = std::to_string(clients);
    return "HTTP/1.1 200 OK\r\nContent-Length: " + std::to_string(count.size()) + "\r\nConnection: close\r\n\r\n" +
           count;
  });
  ports.site = Serve(right(), PageOfTheClub);
  return ports;
}

}  // namespace quenlar::hostile
