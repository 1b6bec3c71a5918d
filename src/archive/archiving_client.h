// A WebClient that writes what goes over the wire into a web archive.
#pragma once

#include <functional>
#include <string>
#include <unordered_map>

#include "archive/warc_writer.h"
#include "base/status.h"
#include "platform/web_client.h"

namespace quenlar {

// Passes everything on to another client. Requests that ask for the bytes of the wire are written down with their
// answers before their listener hears of the end, so that no page counts as read that is not in the archive. Of a
// request that fails the answer is left out: nothing was read of it.
class ArchivingClient final : public WebClient, private WebListener {
 public:
  // `on_failure` is called once, inside a pump, when a record cannot be written; status() says why. From then on the
  // listener hears of no end of a request that keeps its wire: the owner has to end the run, and the next run visits
  // those pages. Client and writer must outlive this object.
  ArchivingClient(WebClient& client, WarcWriter& writer, std::function<void()> on_failure);
  ArchivingClient(const ArchivingClient&) = delete;
  ArchivingClient& operator=(const ArchivingClient&) = delete;

  void SetListener(WebListener* listener) override;
  void Start(WebRequest request, const std::string& key) override;
  void Cancel(const std::string& key) override;
  void LimitConnections(std::size_t most) override { client_.LimitConnections(most); }
  [[nodiscard]] std::size_t connections() const override { return client_.connections(); }

  [[nodiscard]] const Status& status() const { return status_; }

 private:
  [[nodiscard]] bool OnHead(const std::string& key, const WebHead& head) override;
  void OnEnd(const std::string& key, WebAnswer answer) override;

  struct Request {
    std::string url;
    bool unwanted = false;  // the listener wants the head alone
  };

  WebClient& client_;
  WarcWriter& writer_;
  const std::function<void()> on_failure_;
  WebListener* listener_ = nullptr;
  std::unordered_map<std::string, Request> requests_;  // those that are written down, by key
  Status status_;
};

}  // namespace quenlar
