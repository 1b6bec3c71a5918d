#include "platform/win32/winhttp_exchange.h"

#include <new>
#include <utility>

#include "platform/page_fetcher.h"
#include "platform/win32/winhttp_head_lines.h"

namespace quenlar::win32 {

std::shared_ptr<Exchange> Exchange::Start(HINTERNET session, const WireAddress& address,
                                          std::chrono::milliseconds response_limit, Sink sink) {
  auto exchange = std::make_shared<Exchange>(std::move(sink));
  exchange->Begin(session, address, {.response = response_limit}, L"Accept-Encoding: gzip, deflate\r\n");
  return exchange;
}

HttpCall::Next Exchange::OnHead(const std::optional<std::string>& lines) {
  if (!AddHeadLines(lines, head_)) {
    Fail();
    return Next::kFinish;
  }
  if (!head_.location().empty()) {
    sink_({ExchangeReport::Kind::kRedirect, head_.location()});
    return Next::kFinish;
  }
  decoder_.emplace(head_.coding(), kMaxBodyBytes);
  return Next::kReadOn;
}

HttpCall::Next Exchange::OnBytes(std::string_view bytes) {
  if (received_ == 0) sink_({ExchangeReport::Kind::kFirstBytes, {}});
  received_ += bytes.size();
  if (decoder_->Add(bytes, body_)) return Next::kReadOn;
  Fail();
  return Next::kFinish;
}

// The system takes a body that ends before its announced length for a whole one, so the length is compared here. For a
// chunked body there is nothing to compare: one that breaks off is noticed only when the system notices it.
void Exchange::OnEnd() {
  const bool bodyless = head_.status() == 204 || head_.status() == 304;
  const bool whole = bodyless || !head_.content_length() || *head_.content_length() == received_;
  if (!whole || !decoder_->AtEnd()) return Fail();
  sink_({ExchangeReport::Kind::kWhole, std::move(body_)});
}

void Exchange::OnFailure(DWORD) { Fail(); }

void Exchange::OnNoMemory() {
  std::string().swap(body_);
  try {
    Fail();
  } catch (const std::bad_alloc&) {
    return;  // in silence
  }
}

}  // namespace quenlar::win32
