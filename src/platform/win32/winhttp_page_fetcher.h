// Page downloads over the system's HTTP client.
#pragma once

#include <chrono>
#include <map>
#include <memory>
#include <string>

#include "platform/event_loop.h"
#include "platform/page_fetcher.h"
#include "platform/proxy_choice.h"
#include "platform/win32/outlet.h"

namespace quenlar {

namespace win32 {
struct ExchangeReport;
}

struct WinHttpOptions {
  ProxyChoice proxy = {};
  // A server that has received a request and has not begun to answer after this time has failed. It is also the longest
  // time for which the system holds on to a cancelled request.
  std::chrono::milliseconds response_limit{60'000};
};

// The downloads run on the system's threads; what they have to say comes through the loop, so all calls to the
// listener are made inside a pump. Redirects are followed here. Certificates are checked by the system's rules. A body
// that is shorter than announced is a failure; of a chunked body that breaks off Windows tells, some look-alikes do
// not.
class WinHttpPageFetcher final : public PageFetcher {
 public:
  // `loop` must outlive the fetcher. Tasks that are still in the loop when the fetcher goes do nothing.
  explicit WinHttpPageFetcher(EventLoop& loop, const WinHttpOptions& options = {});
  ~WinHttpPageFetcher() override;
  WinHttpPageFetcher(const WinHttpPageFetcher&) = delete;
  WinHttpPageFetcher& operator=(const WinHttpPageFetcher&) = delete;

  void SetListener(FetchListener* listener) override { listener_ = listener; }
  void Start(const std::string& address, const std::string& key) override;
  void Cancel(const std::string& key) override;

 private:
  struct Download;
  using Outlet = win32::Outlet<WinHttpPageFetcher>;
  using Downloads = std::map<std::uint64_t, Download>;  // by number, in the order of the starts

  void Begin(std::uint64_t number, Download& download);
  void OnReport(std::uint64_t number, win32::ExchangeReport& report);
  void OnRedirect(std::uint64_t number, const std::string& location);
  void Fail(std::uint64_t number);

  const WinHttpOptions options_;
  void* session_ = nullptr;
  FetchListener* listener_ = nullptr;
  std::shared_ptr<Outlet> outlet_;
  Downloads downloads_;
  std::uint64_t last_number_ = 0;
};

}  // namespace quenlar
