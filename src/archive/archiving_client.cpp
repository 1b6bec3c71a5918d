#include "archive/archiving_client.h"

#include <utility>

namespace quenlar {
namespace {

// A body that nobody wanted is mostly cut, but a short one may have come with the head.
WarcCut CutOf(const WebAnswer& answer, bool unwanted) {
  if (answer.truncated) return WarcCut::kLength;
  const std::string* const length = answer.head.Find("Content-Length");
  const bool whole = length != nullptr && *length == std::to_string(answer.wire->body.size());
  return unwanted && !whole ? WarcCut::kUnspecified : WarcCut::kNone;
}

}  // namespace

ArchivingClient::ArchivingClient(WebClient& client, WarcWriter& writer, std::function<void()> on_failure)
    : client_(client), writer_(writer), on_failure_(std::move(on_failure)) {}

void ArchivingClient::SetListener(WebListener* listener) {
  listener_ = listener;
  client_.SetListener(listener ? this : nullptr);
}

void ArchivingClient::Start(WebRequest request, const std::string& key) {
  if (request.keep_wire) requests_[key] = {request.url};
  client_.Start(std::move(request), key);
}

void ArchivingClient::Cancel(const std::string& key) {
  requests_.erase(key);
  client_.Cancel(key);
}

bool ArchivingClient::OnHead(const std::string& key, const WebHead& head) {
  const bool wanted = listener_->OnHead(key, head);
  if (const auto request = requests_.find(key); request != requests_.end() && !wanted) request->second.unwanted = true;
  return wanted;
}

void ArchivingClient::OnEnd(const std::string& key, WebAnswer answer) {
  const auto request = requests_.extract(key);
  if (!request.empty() && status_.ok() && answer.wire) {
    if (answer.failure != WebFailure::kNone) {
      answer.wire->head.clear();
      answer.wire->body.clear();
    }
    status_ = writer_.Write(request.mapped().url, answer, CutOf(answer, request.mapped().unwanted));
    if (!status_.ok()) on_failure_();
  }
  if (!request.empty() && !status_.ok()) return;
  answer.wire.reset();
  listener_->OnEnd(key, std::move(answer));
}

}  // namespace quenlar
