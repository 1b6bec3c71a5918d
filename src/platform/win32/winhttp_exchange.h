// One hop of a download over the system's HTTP client.
#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "platform/answer_head.h"
#include "platform/content_decoder.h"
#include "platform/win32/winhttp_call.h"

namespace quenlar::win32 {

// What became of an exchange. kFirstBytes may come before kWhole and kFailed; one of the others ends it.
struct ExchangeReport {
  enum class Kind { kFirstBytes, kRedirect, kWhole, kFailed };
  Kind kind = Kind::kFailed;
  std::string text;  // the Location as it came, or the decoded body
};

class Exchange : public HttpCall {
 public:
  // Called on any thread, also inside Start, never two at a time.
  using Sink = std::function<void(ExchangeReport report)>;

  // Of a session as HttpCall wants it.
  [[nodiscard]] static std::shared_ptr<Exchange> Start(HINTERNET session, const WireAddress& address,
                                                       std::chrono::milliseconds response_limit, Sink sink);
  explicit Exchange(Sink sink) : sink_(std::move(sink)) {}

 private:
  Next OnHead(const std::optional<std::string>& lines) override;
  Next OnBytes(std::string_view bytes) override;
  void OnEnd() override;
  void OnFailure(DWORD error) override;
  // Fails when there is no memory. When there is not even enough to report that, the download falls silent and the
  // watchdog cancels it.
  void OnNoMemory() override;
  [[nodiscard]] bool MayConnect(std::wstring_view) const override { return true; }
  void Fail() { sink_({ExchangeReport::Kind::kFailed, {}}); }

  const Sink sink_;
  AnswerHead head_;
  std::optional<ContentDecoder> decoder_;
  std::string body_;
  std::uint64_t received_ = 0;  // bytes, before they are decoded
};

}  // namespace quenlar::win32
