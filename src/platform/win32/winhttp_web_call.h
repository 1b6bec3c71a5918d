// One request of the crawler and its answer over the system's HTTP client.
#pragma once

#include <atomic>
#include <chrono>
#include <cstdint>
#include <functional>
#include <mutex>
#include <optional>
#include <string>

#include "platform/web_body.h"
#include "platform/web_head_reader.h"
#include "platform/web_transport.h"
#include "platform/win32/winhttp_call.h"

namespace quenlar::win32 {

struct WebReport {
  std::optional<WebHead> head;  // first, when one arrives
  std::string head_text;        // of it, as it came; with keep_wire
  struct End {
    WebAnswer answer;
    bool kept = false;  // as far as the answer's head tells
  };
  std::optional<End> end;  // last, in a report of its own
};

class WebCall : public HttpCall {
 public:
  // Called on any thread, also inside Begin, never two at a time.
  using Sink = std::function<void(WebReport report)>;
  WebCall(const WebExchange& exchange, Sink sink);

  // With `by_name` the system looks the host up itself; otherwise the connection goes to the exchange's address.
  void Send(HINTERNET session, bool by_name);

  // From any thread.
  [[nodiscard]] std::chrono::steady_clock::time_point last_byte() const {
    return std::chrono::steady_clock::time_point(std::chrono::steady_clock::duration(last_byte_.load()));
  }
  [[nodiscard]] std::uint64_t bytes_received() const { return bytes_received_; }
  // The request's head as the system sends it, as far as that is known.
  [[nodiscard]] const std::string& request_head() const { return request_head_; }

 private:
  Next OnHead(const std::optional<std::string>& lines) override;
  Next OnBytes(std::string_view bytes) override;
  void OnEnd() override;
  void OnFailure(DWORD error) override;
  void OnNoMemory() override;
  [[nodiscard]] bool MayConnect(std::wstring_view address) const override;

  Next End(WebFailure failure, std::string message);
  [[nodiscard]] WebFailure FailureOf(DWORD error) const;
  [[nodiscard]] WebFailure FailureOfTls(DWORD error) const;
  [[nodiscard]] bool KeepsConnection(std::string_view status_line) const;
  void NoteBytes(std::size_t count);

  const Sink sink_;
  const WireAddress target_;
  const bool private_addresses_, behind_proxy_, keep_wire_;
  const std::size_t body_limit_;
  const Limits limits_;
  std::string header_lines_, request_head_;

  // Of the thread that is at work on the call.
  WebHeadReader head_;
  std::string head_text_;
  WebBody body_;
  std::string wire_body_;
  std::uint64_t body_bytes_ = 0;
  bool keeps_connection_ = false;

  std::atomic<std::chrono::steady_clock::rep> last_byte_;
  std::atomic<std::uint64_t> bytes_received_ = 0;
  mutable std::mutex ip_mutex_;  // guards what follows
  mutable std::string ip_;       // whom the connection goes to
};

}  // namespace quenlar::win32
