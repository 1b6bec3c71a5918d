// One hop of a download: a request and its answer, as libcurl hands it over.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <curl/curl.h>

#include "platform/answer_head.h"
#include "platform/content_decoder.h"
#include "platform/posix/curl_page_fetcher.h"
#include "platform/wire_address.h"

namespace quenlar {

// Keeps its curl handle from hop to hop and from download to download; each time the handle is set anew, for curl
// counts over all of a handle's requests how many it has repeated on a fresh connection, and stops at five. Nothing of
// the program runs inside curl's callbacks: they fill in what stands here.
class CurlTransfer {
 public:
  // `headers` are sent with every request. The number of a download is added to `arrivals` when the first bytes of its
  // page have come. All three must outlive the transfer.
  CurlTransfer(const CurlPageFetcher::Options& options, curl_slist* headers, std::vector<std::uint64_t>& arrivals);
  CurlTransfer(const CurlTransfer&) = delete;
  CurlTransfer& operator=(const CurlTransfer&) = delete;
  ~CurlTransfer();

  // Makes the handle ready to be added, for a hop of this download; false when memory is short.
  [[nodiscard]] bool Prepare(const WireAddress& address, std::uint64_t download);
  [[nodiscard]] CURL* handle() const { return handle_; }

  // What the hop has come to, once curl says that it is over.
  enum class Outcome { kFailed, kRedirected, kPage };
  [[nodiscard]] Outcome Finish(CURLcode result) const;
  [[nodiscard]] const std::string& location() const { return head_.location(); }
  [[nodiscard]] std::string TakeBody() { return std::exchange(body_, {}); }

  // Whose hop this is.
  [[nodiscard]] std::uint64_t download() const { return download_; }

 private:
  void SetOptions();
  static std::size_t OnHeader(char* bytes, std::size_t size, std::size_t count, void* self);
  static std::size_t OnBody(char* bytes, std::size_t size, std::size_t count, void* self);
  [[nodiscard]] bool AddBody(std::string_view bytes);

  CURL* const handle_;
  const CurlPageFetcher::Options& options_;
  curl_slist* const headers_;
  AnswerHead head_;
  std::optional<ContentDecoder> decoder_;
  std::string body_;
  std::size_t redirect_bytes_ = 0;  // of a redirect's own body, which nobody reads
  bool malformed_ = false;
  std::uint64_t download_ = 0;
  std::vector<std::uint64_t>& arrivals_;
};

}  // namespace quenlar
