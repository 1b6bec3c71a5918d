#include "support/scripted_fetcher.h"

#include <algorithm>
#include <utility>

namespace quenlar {

void ScriptedFetcher::Start(const std::string& address, const std::string& key) {
  started_.push_back({address, key});
  downloads_.push_back({next_id_++, {address, key}, false});
  most_in_flight_ = std::max(most_in_flight_, downloads_.size());
  if (const auto known = answers_.find(address); known != answers_.end()) {
    Answer(downloads_.back(), known->second);
  } else if (others_) {
    const std::uint64_t id = downloads_.back().id;
    if (const auto answer = others_(address)) {
      const auto it = std::find_if(downloads_.begin(), downloads_.end(), [&](const Download& d) { return d.id == id; });
      if (it != downloads_.end()) Answer(*it, *answer);
    }
  }
}

void ScriptedFetcher::Cancel(const std::string& key) {
  cancelled_.push_back(key);
  std::erase_if(downloads_, [&](const Download& download) { return download.request.key == key; });
}

bool ScriptedFetcher::Complete(const std::string& key, std::string body) {
  Download* download = Unanswered(key);
  if (download != nullptr) Answer(*download, {.body = std::move(body)});
  return download != nullptr;
}

bool ScriptedFetcher::Fail(const std::string& key) {
  Download* download = Unanswered(key);
  if (download != nullptr) Answer(*download, Failure());
  return download != nullptr;
}

bool ScriptedFetcher::Progress(const std::string& key, FetchCode code, const std::string& text) {
  const Download* download = Unanswered(key);
  if (download == nullptr) return false;
  Deliver(
      download->id, {}, [this, code, text](const std::string& k) { listener_->OnFetchProgress(k, code, text); }, false);
  return true;
}

std::vector<ScriptedFetcher::Request> ScriptedFetcher::in_flight() const {
  std::vector<Request> requests;
  for (const Download& download : downloads_) requests.push_back(download.request);
  return requests;
}

ScriptedFetcher::Download* ScriptedFetcher::Unanswered(const std::string& key) {
  for (Download& download : downloads_) {
    if (download.request.key == key && !download.answered) return &download;
  }
  return nullptr;
}

// Makes the call inside a pump, unless the download has been cancelled by then. `last` ends the download.
void ScriptedFetcher::Deliver(std::uint64_t id, std::chrono::milliseconds delay,
                              std::function<void(const std::string& key)> call, bool last) {
  loop_.Schedule(delay, [this, alive = std::weak_ptr(alive_), id, call = std::move(call), last] {
    if (alive.expired()) return;
    const auto it = std::find_if(downloads_.begin(), downloads_.end(), [&](const Download& d) { return d.id == id; });
    if (it == downloads_.end() || listener_ == nullptr) return;
    const std::string key = it->request.key;
    if (last) downloads_.erase(it);
    call(key);
  });
}

void ScriptedFetcher::Answer(Download& download, const ScriptedAnswer& answer) {
  download.answered = true;
  const std::uint64_t id = download.id;
  for (const std::string& target : answer.redirects) {
    Deliver(
        id, answer.delay,
        [this, target](const std::string& key) { listener_->OnFetchProgress(key, FetchCode::kRedirecting, target); },
        false);
  }
  if (answer.failed) {
    Deliver(
        id, answer.delay, [this](const std::string& key) { listener_->OnFetchProgress(key, FetchCode::kError, ""); },
        true);
    return;
  }
  if (!answer.body.empty()) {
    Deliver(
        id, answer.delay,
        [this](const std::string& key) { listener_->OnFetchProgress(key, FetchCode::kDataAvailable, ""); }, false);
  }
  Deliver(
      id, answer.delay, [this, body = answer.body](const std::string& key) { listener_->OnFetchComplete(key, body); },
      true);
}

}  // namespace quenlar
