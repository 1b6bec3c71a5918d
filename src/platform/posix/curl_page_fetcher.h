// Page downloads over libcurl, driven by the event loop.
#pragma once

#include <memory>
#include <string>

#include "platform/page_fetcher.h"
#include "platform/posix/event_loop.h"

namespace quenlar {

// Any number of downloads run side by side on the one thread. Connections are kept and used again.
class CurlPageFetcher : public PageFetcher {
 public:
  enum class ProxySource {
    kEnvironment,  // http_proxy, https_proxy, all_proxy and no_proxy
    kNone,
    kGiven,
  };
  struct Options {
    ProxySource proxy_source = ProxySource::kEnvironment;
    std::string proxy;        // kGiven: "http://host:port"; every download goes through it and is never made without it
    std::string authorities;  // a file of certificates (PEM) that are trusted; empty: those of the system
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
