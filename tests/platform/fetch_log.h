// Writes down what a fetcher tells.
#pragma once

#include <algorithm>
#include <functional>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "platform/page_fetcher.h"

namespace quenlar {

class FetchLog : public FetchListener {
 public:
  // "0 key", "3 key address", "14 key", "done key", in the order of the calls.
  std::vector<std::string> calls;
  std::map<std::string, std::string> bodies;  // by key
  // Run inside the calls, after they have been written down.
  std::function<void(const std::string& key)> on_complete;
  std::function<void(const std::string& key, FetchCode code)> on_progress;

  void OnFetchProgress(const std::string& key, FetchCode code, const std::string& text) override {
    calls.push_back(std::to_string(static_cast<int>(code)) + " " + key +
                    (code == FetchCode::kRedirecting ? " " + text : ""));
    if (code == FetchCode::kError) ++finished_;
    if (on_progress) on_progress(key, code);
  }
  void OnFetchComplete(const std::string& key, std::string body) override {
    calls.push_back("done " + key);
    bodies[key] = std::move(body);
    ++finished_;
    if (on_complete) on_complete(key);
  }

  // Downloads that have been completed or have failed.
  [[nodiscard]] std::size_t Finished() const { return finished_; }
  [[nodiscard]] std::size_t Count(const std::string& call) const {
    return static_cast<std::size_t>(std::count(calls.begin(), calls.end(), call));
  }

 private:
  std::size_t finished_ = 0;
};

}  // namespace quenlar
