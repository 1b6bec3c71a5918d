#include "platform/win32/winhttp_page_fetcher.h"

#include <algorithm>
#include <mutex>
#include <utility>

#include "base/ascii.h"
#include "base/product.h"
#include "platform/redirect_chain.h"
#include "platform/win32/wide.h"
#include "platform/win32/winhttp_exchange.h"

namespace quenlar {
namespace {

using win32::Exchange;
using win32::ExchangeReport;

constexpr int kConnectLimit = 30'000, kSendLimit = 30'000, kReceiveLimit = 60'000;  // milliseconds

// "http://host:port/" as the system wants it: "host:port".
std::wstring ProxyName(std::string_view proxy) {
  if (StartsWithIgnoreCase(proxy, "http://")) proxy.remove_prefix(7);
  return win32::ToWide(proxy.substr(0, proxy.find('/')));
}

HINTERNET OpenSession(const WinHttpOptions& options) {
  HINTERNET session = nullptr;
  const std::wstring agent = win32::ToWide(kUserAgent);
  if (!options.proxy.empty()) {
    session = WinHttpOpen(agent.c_str(), WINHTTP_ACCESS_TYPE_NAMED_PROXY, ProxyName(options.proxy).c_str(),
                          WINHTTP_NO_PROXY_BYPASS, WINHTTP_FLAG_ASYNC);
  } else {
    session = WinHttpOpen(agent.c_str(), WINHTTP_ACCESS_TYPE_AUTOMATIC_PROXY, WINHTTP_NO_PROXY_NAME,
                          WINHTTP_NO_PROXY_BYPASS, WINHTTP_FLAG_ASYNC);
  }
  if (!session) return nullptr;
  WinHttpSetTimeouts(session, 0, kConnectLimit, kSendLimit, kReceiveLimit);
  WinHttpSetStatusCallback(
      session, Exchange::OnStatus,
      WINHTTP_CALLBACK_FLAG_ALL_COMPLETIONS | WINHTTP_CALLBACK_FLAG_HANDLES | WINHTTP_CALLBACK_FLAG_CONNECT_TO_SERVER,
      0);
  return session;
}

}  // namespace

struct WinHttpPageFetcher::Download {
  std::string key;
  RedirectChain chain;                 // its address is that of the hop that is under way
  std::shared_ptr<Exchange> exchange;  // null before the first hop
};

// The way from the system's threads to the fetcher, cut when the fetcher goes.
class WinHttpPageFetcher::Outlet : public std::enable_shared_from_this<Outlet> {
 public:
  Outlet(WinHttpPageFetcher& fetcher, EventLoop& loop) : fetcher_(&fetcher), loop_(loop) {}
  Outlet(const Outlet&) = delete;
  Outlet& operator=(const Outlet&) = delete;

  // From any thread.
  void Post(std::function<void(WinHttpPageFetcher& fetcher)> task) {
    const std::lock_guard lock(mutex_);
    if (!fetcher_) return;
    loop_.Post([self = shared_from_this(), task = std::move(task)] {
      if (self->fetcher_) task(*self->fetcher_);  // on the fetcher's own thread, where alone it changes
    });
  }

  // On the fetcher's own thread.
  [[nodiscard]] bool IsCut() const { return !fetcher_; }

  void Cut() {
    const std::lock_guard lock(mutex_);
    fetcher_ = nullptr;
  }

 private:
  std::mutex mutex_;
  WinHttpPageFetcher* fetcher_;
  EventLoop& loop_;
};

WinHttpPageFetcher::WinHttpPageFetcher(EventLoop& loop, const WinHttpOptions& options)
    : options_(options), session_(OpenSession(options)), outlet_(std::make_shared<Outlet>(*this, loop)) {}

WinHttpPageFetcher::~WinHttpPageFetcher() {
  outlet_->Cut();
  for (auto& [number, download] : downloads_) {
    if (download.exchange) download.exchange->Abandon();
  }
  if (session_) WinHttpCloseHandle(session_);
}

void WinHttpPageFetcher::Start(const std::string& address, const std::string& key) {
  const std::uint64_t number = ++last_number_;
  Begin(number, downloads_.emplace(number, Download{key, RedirectChain(address), nullptr}).first->second);
}

// Takes no memory, so that nothing keeps a cancel from happening.
void WinHttpPageFetcher::Cancel(const std::string& key) {
  std::erase_if(downloads_, [&](const auto& entry) {
    if (entry.second.key != key) return false;
    if (entry.second.exchange) entry.second.exchange->Abandon();
    return true;
  });
}

// Starts the hop to the download's address. The download may fail, but only in a later pump.
void WinHttpPageFetcher::Begin(std::uint64_t number, Download& download) {
  const auto address = download.chain.Wire();
  if (!address || !session_) {
    outlet_->Post([number](WinHttpPageFetcher& fetcher) { fetcher.Fail(number); });
    return;
  }
  auto sink = [outlet = outlet_, number](ExchangeReport report) {
    // Tasks must be copyable, bodies should not be copied.
    auto shared = std::make_shared<ExchangeReport>(std::move(report));
    outlet->Post([number, shared](WinHttpPageFetcher& fetcher) { fetcher.OnReport(number, *shared); });
  };
  download.exchange = Exchange::Start(session_, *address, options_.response_limit, std::move(sink));
}

void WinHttpPageFetcher::OnReport(std::uint64_t number, ExchangeReport& report) {
  const auto found = downloads_.find(number);
  if (found == downloads_.end()) return;
  const std::string key = found->second.key;
  switch (report.kind) {
    case ExchangeReport::Kind::kFirstBytes:
      if (listener_) listener_->OnFetchProgress(key, FetchCode::kDataAvailable, "");
      return;
    case ExchangeReport::Kind::kRedirect:
      return OnRedirect(number, report.text);
    case ExchangeReport::Kind::kFailed:
      return Fail(number);
    case ExchangeReport::Kind::kWhole:
      downloads_.erase(found);
      if (listener_) listener_->OnFetchComplete(key, std::move(report.text));
  }
}

void WinHttpPageFetcher::OnRedirect(std::uint64_t number, const std::string& location) {
  Download& download = downloads_.at(number);
  if (!download.chain.Follow(location)) return Fail(number);
  const std::string key = download.key, address = download.chain.address();
  const auto outlet = outlet_;
  if (listener_) listener_->OnFetchProgress(key, FetchCode::kRedirecting, address);
  if (outlet->IsCut()) return;
  // The listener may have cancelled it.
  if (const auto found = downloads_.find(number); found != downloads_.end()) Begin(number, found->second);
}

void WinHttpPageFetcher::Fail(std::uint64_t number) {
  const auto found = downloads_.find(number);
  if (found == downloads_.end()) return;
  const std::string key = found->second.key;
  downloads_.erase(found);
  if (listener_) listener_->OnFetchProgress(key, FetchCode::kError, "");
}

}  // namespace quenlar
