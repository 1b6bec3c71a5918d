#include "platform/posix/curl_transfer.h"

#include <new>

#include "base/product.h"

namespace quenlar {
namespace {

constexpr std::size_t kMaxRedirectBody = 64 * 1024;  // beyond it the connection is given up rather than read empty
constexpr long kReceiveBytes = 16 * 1024;
constexpr long kIdleSeconds = 60;  // connections that were idle for longer are not used again

// curl's callbacks must not throw. When there is no memory for a piece of the answer, the whole answer fails.
template <typename Add>
bool AddWithinMemory(bool& malformed, Add add) {
  try {
    return add();
  } catch (const std::bad_alloc&) {
    malformed = true;
    return false;
  }
}

}  // namespace

CurlTransfer::CurlTransfer(const CurlPageFetcher::Options& options, curl_slist* headers,
                           std::vector<std::uint64_t>& arrivals)
    : handle_(curl_easy_init()), options_(options), headers_(headers), arrivals_(arrivals) {}

CurlTransfer::~CurlTransfer() { curl_easy_cleanup(handle_); }

bool CurlTransfer::Prepare(const WireAddress& address, std::uint64_t download) {
  head_ = AnswerHead();
  decoder_.reset();
  body_.clear();
  redirect_bytes_ = 0;
  malformed_ = false;
  download_ = download;
  if (handle_ == nullptr) return false;
  curl_easy_reset(handle_);
  SetOptions();
  return curl_easy_setopt(handle_, CURLOPT_URL, address.Url().c_str()) == CURLE_OK;
}

void CurlTransfer::SetOptions() {
  curl_easy_setopt(handle_, CURLOPT_PRIVATE, this);
  curl_easy_setopt(handle_, CURLOPT_HEADERFUNCTION, &OnHeader);
  curl_easy_setopt(handle_, CURLOPT_HEADERDATA, this);
  curl_easy_setopt(handle_, CURLOPT_WRITEFUNCTION, &OnBody);
  curl_easy_setopt(handle_, CURLOPT_WRITEDATA, this);
  curl_easy_setopt(handle_, CURLOPT_HTTPHEADER, headers_);
  curl_easy_setopt(handle_, CURLOPT_USERAGENT, kUserAgent);
  curl_easy_setopt(handle_, CURLOPT_PROTOCOLS_STR, "http,https");
  curl_easy_setopt(handle_, CURLOPT_HTTP_VERSION, CURL_HTTP_VERSION_1_1);
  curl_easy_setopt(handle_, CURLOPT_HTTP09_ALLOWED, 0L);
  curl_easy_setopt(handle_, CURLOPT_FOLLOWLOCATION, 0L);
  curl_easy_setopt(handle_, CURLOPT_PATH_AS_IS, 1L);
  curl_easy_setopt(handle_, CURLOPT_SUPPRESS_CONNECT_HEADERS, 1L);
  curl_easy_setopt(handle_, CURLOPT_NOSIGNAL, 1L);
  curl_easy_setopt(handle_, CURLOPT_QUICK_EXIT, 1L);  // a resolver that hangs does not hold up a cancel
  curl_easy_setopt(handle_, CURLOPT_BUFFERSIZE, kReceiveBytes);
  curl_easy_setopt(handle_, CURLOPT_MAXAGE_CONN, kIdleSeconds);
  curl_easy_setopt(handle_, CURLOPT_SSL_VERIFYPEER, 1L);
  curl_easy_setopt(handle_, CURLOPT_SSL_VERIFYHOST, 2L);
  if (!options_.authorities.empty()) curl_easy_setopt(handle_, CURLOPT_CAINFO, options_.authorities.c_str());
  if (options_.proxy.kind != ProxyChoice::Kind::kSystem) {
    const bool given = options_.proxy.kind == ProxyChoice::Kind::kGiven;
    curl_easy_setopt(handle_, CURLOPT_PROXY, options_.proxy.address.c_str());
    curl_easy_setopt(handle_, CURLOPT_NOPROXY, given ? "" : "*");
  }
}

CurlTransfer::Outcome CurlTransfer::Finish(CURLcode result) const {
  if (malformed_ || !head_.complete()) return Outcome::kFailed;
  if (!head_.location().empty()) return Outcome::kRedirected;  // its body does not matter, even when it is cut short
  return result == CURLE_OK && (!decoder_ || decoder_->AtEnd()) ? Outcome::kPage : Outcome::kFailed;
}

std::size_t CurlTransfer::OnHeader(char* bytes, std::size_t size, std::size_t count, void* self) {
  auto& transfer = *static_cast<CurlTransfer*>(self);
  const auto add = [&] { return transfer.head_.AddLine(std::string_view(bytes, size * count)); };
  transfer.malformed_ = transfer.malformed_ || !AddWithinMemory(transfer.malformed_, add);
  return transfer.malformed_ ? 0 : size * count;
}

std::size_t CurlTransfer::OnBody(char* bytes, std::size_t size, std::size_t count, void* self) {
  auto& transfer = *static_cast<CurlTransfer*>(self);
  const auto add = [&] { return transfer.AddBody(std::string_view(bytes, size * count)); };
  return AddWithinMemory(transfer.malformed_, add) ? size * count : 0;
}

bool CurlTransfer::AddBody(std::string_view bytes) {
  if (!head_.location().empty()) return (redirect_bytes_ += bytes.size()) <= kMaxRedirectBody;
  if (!decoder_) {
    decoder_.emplace(head_.coding(), kMaxBodyBytes);
    arrivals_.push_back(download_);
  }
  malformed_ = !decoder_->Add(bytes, body_);
  return !malformed_;
}

}  // namespace quenlar
