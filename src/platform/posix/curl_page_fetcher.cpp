#include "platform/posix/curl_page_fetcher.h"

#include <chrono>
#include <cstdint>
#include <optional>
#include <unordered_map>
#include <utility>
#include <vector>

#include <curl/curl.h>

#include "platform/posix/curl_transfer.h"
#include "platform/redirect_chain.h"

namespace quenlar {
namespace {

constexpr std::size_t kSpareTransfers = 32;  // kept for the next downloads
constexpr long kIdleConnections = 32;
constexpr long kConnections = 64;  // at a time; more than the program ever asks for, and downloads beyond it wait
constexpr std::size_t kMaxSpareRoom = 1 << 20;  // more of it behind a body is given back

struct Download {
  std::string key;
  RedirectChain chain;                          // its address is that of the hop that is under way or comes next
  std::unique_ptr<CurlTransfer> transfer = {};  // while a hop is under way
  std::string body = {};                        // once it is there
};

}  // namespace

// curl's multi interface, driven by the descriptors of the loop. Its reports are posted to the loop with the number of
// their download. When a report's turn comes and the download has been cancelled, the number is unknown and nothing
// happens.
class CurlPageFetcher::Engine : public IoSource {
 public:
  Engine(PosixEventLoop& loop, Options options);
  Engine(const Engine&) = delete;
  Engine& operator=(const Engine&) = delete;
  ~Engine() override;

  void OnReady(int fd, Readiness readiness) override;
  [[nodiscard]] std::optional<std::chrono::steady_clock::time_point> Deadline() const override { return deadline_; }
  void OnDeadline() override;

  void Start(const std::string& address, const std::string& key);
  void Cancel(const std::string& key);

  FetchListener* listener = nullptr;

 private:
  using Id = std::uint64_t;

  static int OnSocket(CURL* handle, curl_socket_t fd, int what, void* self, void* of_socket);
  static int OnTimer(CURLM* multi, long milliseconds, void* self);

  void Collect();
  void EndHop(CurlTransfer& transfer, CURLcode result);
  void StartHop(Id id);
  void EndTransfer(std::unique_ptr<CurlTransfer> transfer);
  // Posts a call of one of the members below. It is made if the download has not been cancelled by then.
  void PostCall(Id id, void (Engine::*call)(Id));
  void TellRedirect(Id id);
  void TellFirstBytes(Id id);
  void TellFailure(Id id);
  void TellCompletion(Id id);
  [[nodiscard]] Download Take(Id id);

  PosixEventLoop& loop_;
  const Options options_;
  CURLM* multi_ = nullptr;
  curl_slist* headers_ = nullptr;
  std::optional<std::chrono::steady_clock::time_point> deadline_;
  std::unordered_map<Id, Download> downloads_;
  std::unordered_multimap<std::string, Id> by_key_;
  std::vector<std::unique_ptr<CurlTransfer>> spare_;
  std::vector<Id> arrivals_;  // downloads whose first bytes have come, not yet posted
  Id next_id_ = 1;
  std::shared_ptr<char> alive_ = std::make_shared<char>();  // posted calls hold it weakly
};

CurlPageFetcher::Engine::Engine(PosixEventLoop& loop, Options options) : loop_(loop), options_(std::move(options)) {
  curl_global_init(CURL_GLOBAL_DEFAULT);
  spare_.reserve(kSpareTransfers);  // a cancel takes no memory
  multi_ = curl_multi_init();
  headers_ = curl_slist_append(nullptr, "Accept-Encoding: gzip, deflate");
  if (multi_ != nullptr) {
    curl_multi_setopt(multi_, CURLMOPT_SOCKETFUNCTION, &OnSocket);
    curl_multi_setopt(multi_, CURLMOPT_SOCKETDATA, this);
    curl_multi_setopt(multi_, CURLMOPT_TIMERFUNCTION, &OnTimer);
    curl_multi_setopt(multi_, CURLMOPT_TIMERDATA, this);
    curl_multi_setopt(multi_, CURLMOPT_MAXCONNECTS, kIdleConnections);
    curl_multi_setopt(multi_, CURLMOPT_MAX_TOTAL_CONNECTIONS, kConnections);
    curl_multi_setopt(multi_, CURLMOPT_PIPELINING, static_cast<long>(CURLPIPE_NOTHING));
  }
  loop_.AddSource(*this);
}

CurlPageFetcher::Engine::~Engine() {
  for (auto& [id, download] : downloads_) {
    if (download.transfer) curl_multi_remove_handle(multi_, download.transfer->handle());
  }
  downloads_.clear();
  spare_.clear();
  curl_multi_cleanup(multi_);
  loop_.RemoveSource(*this);
  curl_slist_free_all(headers_);
  curl_global_cleanup();
}

void CurlPageFetcher::Engine::OnReady(int fd, Readiness readiness) {
  int running = 0;
  const int bits = (readiness.readable ? CURL_CSELECT_IN : 0) | (readiness.writable ? CURL_CSELECT_OUT : 0) |
                   (readiness.broken ? CURL_CSELECT_ERR : 0);
  curl_multi_socket_action(multi_, fd, bits, &running);
  Collect();
}

void CurlPageFetcher::Engine::OnDeadline() {
  deadline_.reset();
  int running = 0;
  curl_multi_socket_action(multi_, CURL_SOCKET_TIMEOUT, 0, &running);
  Collect();
}

int CurlPageFetcher::Engine::OnSocket(CURL*, curl_socket_t fd, int what, void* self, void*) {
  auto& engine = *static_cast<Engine*>(self);
  if (what == CURL_POLL_REMOVE) {
    engine.loop_.Forget(fd);
  } else {
    engine.loop_.Watch(fd, (what & CURL_POLL_IN) != 0, (what & CURL_POLL_OUT) != 0, engine);
  }
  return 0;
}

int CurlPageFetcher::Engine::OnTimer(CURLM*, long milliseconds, void* self) {
  auto& deadline = static_cast<Engine*>(self)->deadline_;
  deadline.reset();
  if (milliseconds >= 0) deadline = std::chrono::steady_clock::now() + std::chrono::milliseconds(milliseconds);
  return 0;
}

void CurlPageFetcher::Engine::Start(const std::string& address, const std::string& key) {
  const Id id = next_id_++;
  downloads_.emplace(id, Download{.key = key, .chain = RedirectChain(address)});
  by_key_.emplace(key, id);
  StartHop(id);
}

void CurlPageFetcher::Engine::Cancel(const std::string& key) {
  const auto [first, last] = by_key_.equal_range(key);
  for (auto it = first; it != last; ++it) {
    const auto download = downloads_.find(it->second);
    auto transfer = std::move(download->second.transfer);
    downloads_.erase(download);
    if (transfer) EndTransfer(std::move(transfer));
  }
  by_key_.erase(first, last);
}

// Posts what curl has brought.
void CurlPageFetcher::Engine::Collect() {
  for (const Id id : std::exchange(arrivals_, {})) PostCall(id, &Engine::TellFirstBytes);
  int left = 0;
  while (const CURLMsg* message = curl_multi_info_read(multi_, &left)) {
    if (message->msg != CURLMSG_DONE) continue;
    const CURLcode result = message->data.result;
    CurlTransfer* transfer = nullptr;
    curl_easy_getinfo(message->easy_handle, CURLINFO_PRIVATE, &transfer);
    EndHop(*transfer, result);
  }
}

void CurlPageFetcher::Engine::StartHop(Id id) {
  Download& download = downloads_.at(id);
  const auto address = download.chain.Wire();
  if (!address || multi_ == nullptr) return PostCall(id, &Engine::TellFailure);
  if (spare_.empty()) spare_.push_back(std::make_unique<CurlTransfer>(options_, headers_, arrivals_));
  auto transfer = std::move(spare_.back());
  spare_.pop_back();
  if (!transfer->Prepare(*address, id) || curl_multi_add_handle(multi_, transfer->handle()) != CURLM_OK) {
    return PostCall(id, &Engine::TellFailure);
  }
  download.transfer = std::move(transfer);
}

void CurlPageFetcher::Engine::EndHop(CurlTransfer& transfer, CURLcode result) {
  const Id id = transfer.download();
  Download& download = downloads_.at(id);
  auto call = &Engine::TellFailure;
  switch (transfer.Finish(result)) {
    case CurlTransfer::Outcome::kFailed:
      break;
    case CurlTransfer::Outcome::kRedirected:
      if (download.chain.Follow(transfer.location())) call = &Engine::TellRedirect;
      break;
    case CurlTransfer::Outcome::kPage:
      download.body = transfer.TakeBody();
      call = &Engine::TellCompletion;
      break;
  }
  EndTransfer(std::move(download.transfer));
  PostCall(id, call);
}

// Also ends a hop that is not over; its connection is closed then.
void CurlPageFetcher::Engine::EndTransfer(std::unique_ptr<CurlTransfer> transfer) {
  curl_multi_remove_handle(multi_, transfer->handle());
  static_cast<void>(transfer->TakeBody());  // of a page that failed or is no longer wanted: a spare one keeps no memory
  if (spare_.size() < kSpareTransfers) spare_.push_back(std::move(transfer));
}

void CurlPageFetcher::Engine::PostCall(Id id, void (Engine::*call)(Id)) {
  loop_.Post([this, alive = std::weak_ptr(alive_), id, call] {
    if (!alive.expired() && downloads_.contains(id)) (this->*call)(id);
  });
}

void CurlPageFetcher::Engine::TellFirstBytes(Id id) {
  const std::string key = downloads_.at(id).key;
  if (listener != nullptr) listener->OnFetchProgress(key, FetchCode::kDataAvailable, "");
}

void CurlPageFetcher::Engine::TellRedirect(Id id) {
  const Download& download = downloads_.at(id);
  const auto [key, address] = std::pair(download.key, download.chain.address());
  const std::weak_ptr alive(alive_);
  if (listener != nullptr) listener->OnFetchProgress(key, FetchCode::kRedirecting, address);
  if (!alive.expired() && downloads_.contains(id)) StartHop(id);  // the listener may have cancelled it
}

void CurlPageFetcher::Engine::TellFailure(Id id) {
  const Download download = Take(id);
  if (listener != nullptr) listener->OnFetchProgress(download.key, FetchCode::kError, "");
}

void CurlPageFetcher::Engine::TellCompletion(Id id) {
  Download download = Take(id);
  if (download.body.capacity() - download.body.size() > kMaxSpareRoom) download.body.shrink_to_fit();
  if (listener != nullptr) listener->OnFetchComplete(download.key, std::move(download.body));
}

Download CurlPageFetcher::Engine::Take(Id id) {
  const auto it = downloads_.find(id);
  Download download = std::move(it->second);
  downloads_.erase(it);
  const auto [first, last] = by_key_.equal_range(download.key);
  for (auto key = first; key != last; ++key) {
    if (key->second != id) continue;
    by_key_.erase(key);
    break;
  }
  return download;
}

CurlPageFetcher::CurlPageFetcher(PosixEventLoop& loop, Options options)
    : engine_(std::make_unique<Engine>(loop, std::move(options))) {}

CurlPageFetcher::~CurlPageFetcher() = default;

void CurlPageFetcher::SetListener(FetchListener* listener) { engine_->listener = listener; }

void CurlPageFetcher::Start(const std::string& address, const std::string& key) { engine_->Start(address, key); }

void CurlPageFetcher::Cancel(const std::string& key) { engine_->Cancel(key); }

}  // namespace quenlar
