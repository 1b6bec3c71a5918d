// Writes down what a web client tells.
#pragma once

#include <functional>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "platform/web_client.h"

namespace quenlar {

class WebLog : public WebListener {
 public:
  std::vector<std::string> calls;          // "head key 200", "end key", in the order of the calls
  std::map<std::string, WebAnswer> ended;  // by key
  // Run inside the calls, after they have been written down. `on_head` says whether the body is wanted.
  std::function<bool(const std::string& key, const WebHead& head)> on_head;
  std::function<void(const std::string& key)> on_end;

  [[nodiscard]] bool OnHead(const std::string& key, const WebHead& head) override {
    calls.push_back("head " + key + " " + std::to_string(head.status));
    return on_head ? on_head(key, head) : true;
  }
  void OnEnd(const std::string& key, WebAnswer answer) override {
    calls.push_back("end " + key);
    ended[key] = std::move(answer);
    ++ends_;
    if (on_end) on_end(key);
  }

  [[nodiscard]] std::size_t ends() const { return ends_; }
  // The keys in the order of their ends.
  [[nodiscard]] std::vector<std::string> EndOrder() const {
    std::vector<std::string> keys;
    for (const std::string& call : calls) {
      if (call.starts_with("end ")) keys.push_back(call.substr(4));
    }
    return keys;
  }

 private:
  std::size_t ends_ = 0;
};

}  // namespace quenlar
