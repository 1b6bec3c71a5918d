#include "platform/win32/winhttp_page_fetcher.h"

#include <utility>

#include "base/product.h"
#include "platform/redirect_chain.h"
#include "platform/win32/winhttp_exchange.h"
#include "platform/win32/winhttp_session.h"

namespace quenlar {
namespace {

using win32::Exchange;
using win32::ExchangeReport;

}  // namespace

struct WinHttpPageFetcher::Download {
  std::string key;
  RedirectChain chain;                 // its address is that of the hop that is under way
  std::shared_ptr<Exchange> exchange;  // null before the first hop
};

WinHttpPageFetcher::WinHttpPageFetcher(EventLoop& loop, const WinHttpOptions& options)
    : options_(options),
      session_(win32::OpenSession(kUserAgent, options.proxy)),
      outlet_(std::make_shared<Outlet>(*this, loop)) {}

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
