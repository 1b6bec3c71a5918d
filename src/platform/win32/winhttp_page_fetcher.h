// Page downloads over the system's HTTP client.
#pragma once

#include <chrono>
#include <map>
#include <memory>
#include <string>

#include "platform/event_loop.h"
#include "platform/page_fetcher.h"

namespace quenlar {

namespace win32 {
struct ExchangeReport;
}

struct WinHttpOptions {
  std::string proxy;  // "http://host:port", used for every address; empty: the system's own proxy settings
  // A server that has received a request and has not begun to answer after this time has failed. It is also the longest
  // time for which the system holds on to a cancelled request.
  std::chrono::milliseconds response_limit{60'000};
};

// The downloads run on threads of the system. Their reports come through the loop, so the listener is called inside a
// pump. Redirects are followed here, and certificates are checked by the system's rules. A body that is shorter than
// announced is a failure. So is a chunked body that breaks off, as far as the system notices it: Windows does, and
// other systems that run its programs may not.
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
  class Outlet;
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
