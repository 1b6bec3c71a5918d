#include "platform/posix/curl_web_exchange.h"

#include <new>
#include <utility>

#include <openssl/err.h>
#include <openssl/ssl.h>
#include <sys/socket.h>
#include <unistd.h>

#include "platform/posix/socket_address.h"

namespace quenlar {
namespace {

constexpr long kReceiveBytes = 16 * 1024;
constexpr long kIdleSeconds = 90;  // the caller closes idle connections sooner

// What curl calls lets no exception out: what memory does not hold is not added, and ends the exchange.
template <typename Add>
bool AddWithinMemory(bool& no_memory, Add add) {
  try {
    return add();
  } catch (const std::bad_alloc&) {
    no_memory = true;
    return false;
  }
}

CURLSH* MakeNames() {
  CURLSH* names = curl_share_init();
  if (names != nullptr) curl_share_setopt(names, CURLSHOPT_SHARE, CURL_LOCK_DATA_DNS);
  return names;
}

// A signature that does not hold leaves its own errors in OpenSSL's queue, in front of the one that says that the
// certificate is bad. Curl looks at the first error alone, and would take a forged certificate for a host that does not
// speak TLS.
int OnVerified(int holds, X509_STORE_CTX*) {
  if (holds == 0) ERR_clear_error();
  return holds;
}

// A server whose certificate holds may not have the key to it: what it signs in the handshake does not hold then, and
// OpenSSL tells it so by the alert "decrypt_error" (RFC 8446, section 6.2), whatever the version of TLS. That is as bad
// as a bad certificate, and it is reported to curl as one; curl would take it for a host that does not speak TLS.
void OnTlsState(const SSL*, int where, int alert) {
  if (where != SSL_CB_WRITE_ALERT || (alert & 0xFF) != SSL_AD_DECRYPT_ERROR) return;
  ERR_clear_error();
  ERR_raise(ERR_LIB_SSL, SSL_R_CERTIFICATE_VERIFY_FAILED);
}

CURLcode OnTlsContext(CURL*, void* context, void*) {
  auto* const tls = static_cast<SSL_CTX*>(context);
  SSL_CTX_set_verify(tls, SSL_CTX_get_verify_mode(tls), &OnVerified);
  SSL_CTX_set_info_callback(tls, &OnTlsState);
  return CURLE_OK;
}

[[nodiscard]] bool Append(curl_slist*& list, const std::string& line) {
  curl_slist* longer = curl_slist_append(list, line.c_str());
  if (longer != nullptr) list = longer;
  return longer != nullptr;
}

}  // namespace

CurlWebExchange::CurlWebExchange(const std::string& authorities, CurlSockets& sockets,
                                 std::vector<WebExchangeId>& heads)
    : authorities_(authorities), sockets_(sockets), heads_(heads), names_(MakeNames()), handle_(curl_easy_init()) {}

CurlWebExchange::~CurlWebExchange() {
  curl_easy_cleanup(handle_);
  curl_share_cleanup(names_);
  FreeLists();
}

void CurlWebExchange::FreeLists() {
  curl_slist_free_all(std::exchange(headers_, nullptr));
  curl_slist_free_all(std::exchange(connect_to_, nullptr));
}

bool CurlWebExchange::Prepare(const WebExchange& exchange, const std::string& proxy) {
  id_ = exchange.id;
  host_ = exchange.host;
  address_ = exchange.address;
  secure_ = exchange.target.secure;
  body_limit_ = exchange.request.body_limit;
  head_ = WebHeadReader();
  body_.Begin(ContentCoding::kIdentity, body_limit_);
  wire_.reset();
  if (exchange.request.keep_wire) wire_.emplace();
  body_bytes_ = 0;
  last_byte_ = std::chrono::steady_clock::now();
  opened_ = malformed_ = no_memory_ = false;
  result_.reset();
  error_[0] = '\0';
  if (handle_ == nullptr || names_ == nullptr) return false;
  curl_easy_reset(handle_);
  FreeLists();
  if (!SetHeaders(exchange.request)) return false;
  if (address_) {
    const std::string ip = address_->v6 ? "[" + address_->Text() + "]" : address_->Text();
    if (!Append(connect_to_, "::" + ip + ":" + std::to_string(exchange.target.port))) return false;
  }
  SetRequestOptions(exchange.request);
  SetConnectionOptions(exchange.request, proxy);
  return curl_easy_setopt(handle_, CURLOPT_URL, exchange.target.Url().c_str()) == CURLE_OK;
}

bool CurlWebExchange::SetHeaders(const WebRequest& request) {
  return Append(headers_, "Accept-Encoding: gzip, deflate") &&
         (request.if_none_match.empty() || Append(headers_, "If-None-Match: " + request.if_none_match)) &&
         (request.if_modified_since.empty() || Append(headers_, "If-Modified-Since: " + request.if_modified_since));
}

void CurlWebExchange::SetRequestOptions(const WebRequest& request) {
  curl_easy_setopt(handle_, CURLOPT_PRIVATE, this);
  curl_easy_setopt(handle_, CURLOPT_HEADERFUNCTION, &OnHeader);
  curl_easy_setopt(handle_, CURLOPT_HEADERDATA, this);
  curl_easy_setopt(handle_, CURLOPT_WRITEFUNCTION, &OnBody);
  curl_easy_setopt(handle_, CURLOPT_WRITEDATA, this);
  curl_easy_setopt(handle_, CURLOPT_ERRORBUFFER, error_);
  curl_easy_setopt(handle_, CURLOPT_HTTPHEADER, headers_);
  if (!request.user_agent.empty()) curl_easy_setopt(handle_, CURLOPT_USERAGENT, request.user_agent.c_str());
  curl_easy_setopt(handle_, CURLOPT_PROTOCOLS_STR, "http,https");
  curl_easy_setopt(handle_, CURLOPT_HTTP_VERSION,
                   static_cast<long>(request.keep_wire ? CURL_HTTP_VERSION_1_1 : CURL_HTTP_VERSION_2TLS));
  curl_easy_setopt(handle_, CURLOPT_HTTP09_ALLOWED, 0L);
  curl_easy_setopt(handle_, CURLOPT_FOLLOWLOCATION, 0L);
  curl_easy_setopt(handle_, CURLOPT_PATH_AS_IS, 1L);
  curl_easy_setopt(handle_, CURLOPT_SUPPRESS_CONNECT_HEADERS, 1L);
  curl_easy_setopt(handle_, CURLOPT_BUFFERSIZE, kReceiveBytes);
  if (request.keep_wire) {
    curl_easy_setopt(handle_, CURLOPT_VERBOSE, 1L);
    curl_easy_setopt(handle_, CURLOPT_DEBUGFUNCTION, &OnWire);
    curl_easy_setopt(handle_, CURLOPT_DEBUGDATA, this);
  }
}

void CurlWebExchange::SetConnectionOptions(const WebRequest& request, const std::string& proxy) {
  curl_easy_setopt(handle_, CURLOPT_NOSIGNAL, 1L);
  curl_easy_setopt(handle_, CURLOPT_QUICK_EXIT, 1L);
  curl_easy_setopt(handle_, CURLOPT_MAXAGE_CONN, kIdleSeconds);
  curl_easy_setopt(handle_, CURLOPT_CONNECTTIMEOUT_MS, static_cast<long>(request.connect_limit.count()));
  curl_easy_setopt(handle_, CURLOPT_SHARE, names_);
  curl_easy_setopt(handle_, CURLOPT_DNS_CACHE_TIMEOUT, 0L);
  curl_easy_setopt(handle_, CURLOPT_SSL_VERIFYPEER, 1L);
  curl_easy_setopt(handle_, CURLOPT_SSL_VERIFYHOST, 2L);
  curl_easy_setopt(handle_, CURLOPT_SSL_CTX_FUNCTION, &OnTlsContext);
  if (!authorities_.empty()) {
    curl_easy_setopt(handle_, CURLOPT_CAINFO, authorities_.c_str());
    // Curl keeps the certificates of a file in memory, those of a folder it reads again for each connection.
    curl_easy_setopt(handle_, CURLOPT_CAPATH, nullptr);
  }
  curl_easy_setopt(handle_, CURLOPT_PROXY, proxy.c_str());
  curl_easy_setopt(handle_, CURLOPT_NOPROXY, proxy.empty() ? "*" : "");
  if (address_) curl_easy_setopt(handle_, CURLOPT_CONNECT_TO, connect_to_);
  curl_easy_setopt(handle_, CURLOPT_OPENSOCKETFUNCTION, &OnOpenSocket);
  curl_easy_setopt(handle_, CURLOPT_OPENSOCKETDATA, this);
  curl_easy_setopt(handle_, CURLOPT_CLOSESOCKETFUNCTION, &OnCloseSocket);
  curl_easy_setopt(handle_, CURLOPT_CLOSESOCKETDATA, &sockets_);
}

curl_socket_t CurlWebExchange::OnOpenSocket(void* self, curlsocktype, curl_sockaddr* address) {
  auto& exchange = *static_cast<CurlWebExchange*>(self);
  if (exchange.host_ == 0) return CURL_SOCKET_BAD;  // asked for a kept connection, not for a new one
  // Whatever curl makes of the name, nothing but the judged address is connected to.
  if (exchange.address_ && IpAddressOf(address->addr) != exchange.address_) return CURL_SOCKET_BAD;
  const int fd = socket(address->family, address->socktype | SOCK_CLOEXEC, address->protocol);
  if (fd < 0) return CURL_SOCKET_BAD;
  const auto note = [&] {
    exchange.sockets_.OnOpened(exchange.host_, fd);
    exchange.opened_ = true;
    return true;
  };
  if (AddWithinMemory(exchange.no_memory_, note)) return fd;
  close(fd);
  return CURL_SOCKET_BAD;
}

int CurlWebExchange::OnCloseSocket(void* sockets, curl_socket_t fd) {
  static_cast<CurlSockets*>(sockets)->OnClosing(fd);
  return close(fd);
}

std::size_t CurlWebExchange::OnHeader(char* bytes, std::size_t size, std::size_t count, void* self) {
  auto& exchange = *static_cast<CurlWebExchange*>(self);
  const auto add = [&] { return exchange.AddLine(std::string_view(bytes, size * count)); };
  return AddWithinMemory(exchange.no_memory_, add) ? size * count : 0;
}

bool CurlWebExchange::AddLine(std::string_view line) {
  last_byte_ = std::chrono::steady_clock::now();
  const bool was_complete = head_.complete();
  malformed_ = malformed_ || !head_.AddLine(line);
  if (malformed_) return false;
  if (was_complete || !head_.complete()) return true;
  if (address_) head_.head().ip = address_->Text();
  body_.Begin(head_.coding(), body_limit_);
  heads_.push_back(id_);
  return true;
}

std::size_t CurlWebExchange::OnBody(char* bytes, std::size_t size, std::size_t count, void* self) {
  auto& exchange = *static_cast<CurlWebExchange*>(self);
  const auto add = [&] { return exchange.AddBody(std::string_view(bytes, size * count)); };
  return AddWithinMemory(exchange.no_memory_, add) ? size * count : 0;
}

bool CurlWebExchange::AddBody(std::string_view bytes) {
  last_byte_ = std::chrono::steady_clock::now();
  body_bytes_ += bytes.size();
  const WebBody::Outcome outcome = body_.Add(bytes);
  malformed_ = malformed_ || outcome == WebBody::Outcome::kBroken;
  return outcome == WebBody::Outcome::kGoesOn;
}

// The bytes of the wire; curl shows those of a body before it joins its chunks.
int CurlWebExchange::OnWire(CURL*, curl_infotype kind, char* bytes, std::size_t size, void* self) {
  auto& exchange = *static_cast<CurlWebExchange*>(self);
  const std::string_view text(bytes, size);
  const auto add = [&] {
    WebWire& wire = *exchange.wire_;
    if (kind == CURLINFO_HEADER_OUT) {
      wire = WebWire{.request = std::string(text)};  // a request that is repeated on a fresh connection counts once
    } else if (kind == CURLINFO_HEADER_IN) {
      if (text.starts_with("HTTP/")) wire.head.clear();  // of an interim answer
      wire.head += text;
    } else if (kind == CURLINFO_DATA_IN) {
      wire.body += text;
    }
    return true;
  };
  AddWithinMemory(exchange.no_memory_, add);
  return 0;
}

bool CurlWebExchange::Connected() const {
  curl_off_t time = 0;
  curl_easy_getinfo(handle_, CURLINFO_CONNECT_TIME_T, &time);
  return time > 0;
}

WebFailure CurlWebExchange::FailureOf(CURLcode result) const {
  // Curl also says that memory is short when a line of the head is longer than it takes.
  const bool long_line = head_.bytes() > 0 && !head_.complete();
  if (no_memory_ || (result == CURLE_OUT_OF_MEMORY && !long_line)) return WebFailure::kNoMemory;
  if (body_.truncated()) return WebFailure::kNone;
  if (malformed_) return WebFailure::kBroken;
  long tunnel = 0;
  curl_easy_getinfo(handle_, CURLINFO_HTTP_CONNECTCODE, &tunnel);
  if (behind_proxy() && secure_ && head_.head().status == 0 && tunnel != 0 && tunnel / 100 != 2) {
    // The proxy works; it says of the host that nothing answers there.
    return tunnel >= 502 && tunnel <= 504 ? WebFailure::kNoConnection : WebFailure::kProxy;
  }
  switch (result) {
    case CURLE_OK:
      return head_.complete() && body_.AtEnd() ? WebFailure::kNone : WebFailure::kBroken;
    case CURLE_COULDNT_RESOLVE_PROXY:
    case CURLE_PROXY:
      return WebFailure::kProxy;
    case CURLE_COULDNT_RESOLVE_HOST:
      return WebFailure::kNoName;
    case CURLE_COULDNT_CONNECT:
      return behind_proxy() ? WebFailure::kProxy : WebFailure::kNoConnection;
    case CURLE_OPERATION_TIMEDOUT:
      if (Connected()) return secure_ ? WebFailure::kNoTls : WebFailure::kTimeout;
      return behind_proxy() ? WebFailure::kProxy : WebFailure::kNoConnection;
    case CURLE_PEER_FAILED_VERIFICATION:
    case CURLE_SSL_CACERT_BADFILE:
      return WebFailure::kCertificate;
    case CURLE_SSL_CONNECT_ERROR:
      return WebFailure::kNoTls;
    case CURLE_URL_MALFORMAT:
      return WebFailure::kBadUrl;
    default:
      return WebFailure::kBroken;
  }
}

std::string CurlWebExchange::MessageOf(WebFailure failure) const {
  if (failure == WebFailure::kNone) return "";
  if (failure == WebFailure::kNoMemory) return "memory is short";
  if (malformed_) return head_.complete() ? "the body is not in the encoding that its head names" : "a malformed head";
  if (result_ == CURLE_OUT_OF_MEMORY) return "a head that is too long";
  if (result_ == CURLE_OK) return head_.complete() ? "the compressed body is cut short" : "no answer";
  return error_[0] != '\0' ? error_ : curl_easy_strerror(*result_);
}

WebAnswer CurlWebExchange::TakeAnswer() {
  WebAnswer answer;
  if (result_) {
    answer.failure = FailureOf(*result_);
    answer.message = MessageOf(answer.failure);
  }
  answer.bytes_received = head_.bytes() + body_bytes_;
  answer.body = body_.Take();
  answer.truncated = body_.truncated();
  if (head_.complete()) answer.head = std::move(head_.head());
  if (wire_ && !wire_->request.empty()) answer.wire = std::move(wire_);
  wire_.reset();
  head_ = WebHeadReader();
  return answer;
}

}  // namespace quenlar
