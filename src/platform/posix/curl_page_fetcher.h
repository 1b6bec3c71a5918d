// Page downloads over libcurl.
#pragma once

#include <memory>
#include <string>

#include "platform/page_fetcher.h"
#include "platform/posix/event_loop.h"
#include "platform/proxy_choice.h"

namespace quenlar {

// Any number of downloads run side by side on the one thread. Connections are kept and used again.
class CurlPageFetcher : public PageFetcher {
 public:
  struct Options {
    ProxyChoice proxy = {};
    std::string authorities = {};  // a file of certificates (PEM) that are trusted; empty: those of the system
  };

  // The loop must outlive the fetcher.
  CurlPageFetcher(PosixEventLoop& loop, Options options);
  CurlPageFetcher(const CurlPageFetcher&) = delete;
  CurlPageFetcher& operator=(const CurlPageFetcher&) = delete;
  ~CurlPageFetcher() override;

  void SetListener(FetchListener* listener) override;
  void Start(const std::string& address, const std::string& key) override;
  void Cancel(const std::string& key) override;

 private:
  class Engine;
  std::unique_ptr<Engine> engine_;
};

}  // namespace quenlar
