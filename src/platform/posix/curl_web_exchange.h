// One request of the crawler and its answer, as libcurl hands it over.
#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <curl/curl.h>

#include "platform/web_body.h"
#include "platform/web_head_reader.h"
#include "platform/web_transport.h"

namespace quenlar {

// Told of the sockets that curl opens and closes.
class CurlSockets {
 public:
  virtual ~CurlSockets() = default;
  virtual void OnOpened(WebHostId host, int fd) = 0;
  // Before it is closed.
  virtual void OnClosing(int fd) = 0;
};

// Keeps its curl handle from exchange to exchange. The handle has a small cache of names to itself: curl goes through a
// cache whenever a request ends, which in one that thousands share would take its time. Nothing of the program runs
// inside curl's callbacks: they fill in what stands here.
class CurlWebExchange {
 public:
  // The ids of exchanges whose head has arrived are added to `heads`. All must outlive the exchange.
  CurlWebExchange(const std::string& authorities, CurlSockets& sockets, std::vector<WebExchangeId>& heads);
  CurlWebExchange(const CurlWebExchange&) = delete;
  CurlWebExchange& operator=(const CurlWebExchange&) = delete;
  ~CurlWebExchange();

  // Makes the handle ready to be added; false when memory is short. With `proxy` "" the exchange's address is connected
  // to, and no other. An exchange of host 0 opens no connection: it has a kept one or fails.
  [[nodiscard]] bool Prepare(const WebExchange& exchange, const std::string& proxy);
  [[nodiscard]] CURL* handle() const { return handle_; }
  [[nodiscard]] WebExchangeId id() const { return id_; }
  [[nodiscard]] WebHostId host() const { return host_; }
  [[nodiscard]] bool behind_proxy() const { return !address_; }
  [[nodiscard]] const WebHead& head() const { return head_.head(); }
  [[nodiscard]] std::chrono::steady_clock::time_point last_byte() const { return last_byte_; }

  // Whether it opened a socket that never came to be connected.
  [[nodiscard]] bool opened_in_vain() const { return opened_ && !Connected(); }

  // Curl says that the exchange is over, or would not begin it.
  void End(CURLcode result) { result_ = result; }
  // What it has come to; without a failure when End was not called.
  [[nodiscard]] WebAnswer TakeAnswer();

 private:
  void SetRequestOptions(const WebRequest& request);
  void SetConnectionOptions(const WebRequest& request, const std::string& proxy);
  [[nodiscard]] bool SetHeaders(const WebRequest& request);
  void FreeLists();
  [[nodiscard]] WebFailure FailureOf(CURLcode result) const;
  [[nodiscard]] bool Connected() const;
  [[nodiscard]] std::string MessageOf(WebFailure failure) const;

  static std::size_t OnHeader(char* bytes, std::size_t size, std::size_t count, void* self);
  static std::size_t OnBody(char* bytes, std::size_t size, std::size_t count, void* self);
  static int OnWire(CURL* handle, curl_infotype kind, char* bytes, std::size_t size, void* self);
  static curl_socket_t OnOpenSocket(void* self, curlsocktype purpose, curl_sockaddr* address);
  static int OnCloseSocket(void* sockets, curl_socket_t fd);
  [[nodiscard]] bool AddLine(std::string_view line);
  [[nodiscard]] bool AddBody(std::string_view bytes);

  const std::string& authorities_;
  CurlSockets& sockets_;
  std::vector<WebExchangeId>& heads_;
  CURLSH* const names_;
  CURL* const handle_;
  curl_slist* headers_ = nullptr;
  curl_slist* connect_to_ = nullptr;
  char error_[CURL_ERROR_SIZE] = {};

  WebExchangeId id_ = 0;
  WebHostId host_ = 0;
  std::optional<IpAddress> address_;
  bool secure_ = false;
  std::size_t body_limit_ = 0;
  WebHeadReader head_;
  WebBody body_;
  std::optional<WebWire> wire_;
  std::uint64_t body_bytes_ = 0;
  std::chrono::steady_clock::time_point last_byte_;
  bool opened_ = false, malformed_ = false, no_memory_ = false;
  std::optional<CURLcode> result_;
};

}  // namespace quenlar
