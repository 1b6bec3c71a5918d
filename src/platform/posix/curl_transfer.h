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

// Uses one curl handle for all hops and downloads. All options are set anew for each hop, because curl counts how many
// requests of a handle it has repeated on a fresh connection and gives up after five. The callbacks of curl only fill
// in members; no other code of the program runs inside them.
class CurlTransfer {
 public:
  // `headers` are sent with every request. The transfer appends the number of its download to `arrivals` when the first
  // bytes of the page have come. All three must outlive the transfer.
  CurlTransfer(const CurlPageFetcher::Options& options, curl_slist* headers, std::vector<std::uint64_t>& arrivals);
  CurlTransfer(const CurlTransfer&) = delete;
  CurlTransfer& operator=(const CurlTransfer&) = delete;
  ~CurlTransfer();

  // Prepares the handle for a hop of this download. Returns false when there is not enough memory.
  [[nodiscard]] bool Prepare(const WireAddress& address, std::uint64_t download);
  [[nodiscard]] CURL* handle() const { return handle_; }

  // Returns how the hop has ended. Call it when curl says that it has.
  enum class Outcome { kFailed, kRedirected, kPage };
  [[nodiscard]] Outcome Finish(CURLcode result) const;
  [[nodiscard]] const std::string& location() const { return head_.location(); }
  [[nodiscard]] std::string TakeBody() { return std::exchange(body_, {}); }

  // The number of the download that this hop belongs to.
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
  std::size_t redirect_bytes_ = 0;  // of the body of a redirect, which is dropped
  bool malformed_ = false;
  std::uint64_t download_ = 0;
  std::vector<std::uint64_t>& arrivals_;
};

}  // namespace quenlar
