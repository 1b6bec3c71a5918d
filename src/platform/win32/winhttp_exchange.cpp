#include "platform/win32/winhttp_exchange.h"

#include <algorithm>
#include <new>
#include <utility>

#include "platform/page_fetcher.h"
#include "platform/win32/wide.h"

namespace quenlar::win32 {
namespace {

// A head larger than this is refused, in bytes of wide characters.
constexpr DWORD kMaxHead = kMaxHeadBytes * sizeof(wchar_t);

// That a server has closed an idle connection shows only when the connection is used again. Each such failure removes
// one connection from the system's store.
constexpr int kMostSends = 8;

constexpr wchar_t kHeaders[] = L"Accept-Encoding: gzip, deflate\r\n";

void SetOption(HINTERNET handle, DWORD option, DWORD value) { WinHttpSetOption(handle, option, &value, sizeof value); }

// The system widens header bytes one by one or by the ANSI code page.
std::string HeaderBytes(std::wstring_view lines) {
  if (std::all_of(lines.begin(), lines.end(), [](wchar_t c) { return c < 0x100; })) {
    return {lines.begin(), lines.end()};
  }
  const int units = static_cast<int>(lines.size());
  std::string bytes(
      static_cast<std::size_t>(WideCharToMultiByte(CP_ACP, 0, lines.data(), units, nullptr, 0, nullptr, nullptr)),
      '\0');
  WideCharToMultiByte(CP_ACP, 0, lines.data(), units, bytes.data(), static_cast<int>(bytes.size()), nullptr, nullptr);
  return bytes;
}

}  // namespace

std::shared_ptr<Exchange> Exchange::Start(HINTERNET session, const WireAddress& address,
                                          std::chrono::milliseconds response_limit, Sink sink) {
  auto exchange = std::make_shared<Exchange>(std::move(sink));
  if (!exchange->Open(session, address, response_limit) || !exchange->Send()) {
    exchange->Report(ExchangeReport::Kind::kFailed);
  }
  exchange->Work();
  return exchange;
}

bool Exchange::Open(HINTERNET session, const WireAddress& address, std::chrono::milliseconds response_limit) {
  connection_ = WinHttpConnect(session, ToWide(address.host).c_str(), address.port, 0);
  if (!connection_) return false;
  const wchar_t* types[] = {L"*/*", nullptr};
  const DWORD secure = address.secure ? WINHTTP_FLAG_SECURE : 0;
  request_ = WinHttpOpenRequest(connection_, L"GET", ToWide(address.target).c_str(), nullptr, WINHTTP_NO_REFERER, types,
                                secure | WINHTTP_FLAG_ESCAPE_DISABLE | WINHTTP_FLAG_ESCAPE_DISABLE_QUERY);
  if (!request_) return false;
  self_ = shared_from_this();
  auto context = reinterpret_cast<DWORD_PTR>(this);
  WinHttpSetOption(request_, WINHTTP_OPTION_CONTEXT_VALUE, &context, sizeof context);
  // The system must not follow redirects itself, because their targets have to be checked. It must not send passwords
  // or cookies either.
  SetOption(request_, WINHTTP_OPTION_REDIRECT_POLICY, WINHTTP_OPTION_REDIRECT_POLICY_NEVER);
  SetOption(request_, WINHTTP_OPTION_DISABLE_FEATURE, WINHTTP_DISABLE_COOKIES | WINHTTP_DISABLE_AUTHENTICATION);
  SetOption(request_, WINHTTP_OPTION_AUTOLOGON_POLICY, WINHTTP_AUTOLOGON_SECURITY_LEVEL_HIGH);
  SetOption(request_, WINHTTP_OPTION_RECEIVE_RESPONSE_TIMEOUT, static_cast<DWORD>(response_limit.count()));
  // Some servers ask for a certificate of the client and can do without one. They are told that there is none; if
  // nothing is said, the request fails.
  if (address.secure) {
    WinHttpSetOption(request_, WINHTTP_OPTION_CLIENT_CERT_CONTEXT, WINHTTP_NO_CLIENT_CERT_CONTEXT, 0);
  }
  return true;
}

bool Exchange::Send() {
  ++sends_;
  return WinHttpSendRequest(request_, kHeaders, static_cast<DWORD>(-1), nullptr, 0, 0,
                            reinterpret_cast<DWORD_PTR>(this)) != FALSE;
}

void Exchange::Abandon() {
  {
    const std::lock_guard lock(mutex_);
    finished_ = true;
    if (working_ || closed_) return;
    closed_ = true;
  }
  CloseHandles();
}

void Exchange::CloseHandles() {
  if (request_) WinHttpCloseHandle(request_);
  if (connection_) WinHttpCloseHandle(connection_);
}

void CALLBACK Exchange::OnStatus(HINTERNET, DWORD_PTR context, DWORD status, void* information, DWORD length) {
  auto* exchange = reinterpret_cast<Exchange*>(context);
  if (!exchange) return;
  switch (status) {
    case WINHTTP_CALLBACK_STATUS_CONNECTING_TO_SERVER:
      return exchange->Take({Event::Kind::kConnecting});
    case WINHTTP_CALLBACK_STATUS_SENDREQUEST_COMPLETE:
      return exchange->Take({Event::Kind::kSent});
    case WINHTTP_CALLBACK_STATUS_HEADERS_AVAILABLE:
      return exchange->Take({Event::Kind::kHead});
    case WINHTTP_CALLBACK_STATUS_DATA_AVAILABLE:
      return exchange->Take({Event::Kind::kAvailable, *static_cast<DWORD*>(information)});
    case WINHTTP_CALLBACK_STATUS_READ_COMPLETE:
      return exchange->Take({Event::Kind::kRead, length});
    case WINHTTP_CALLBACK_STATUS_REQUEST_ERROR:
      return exchange->Take({Event::Kind::kError, static_cast<WINHTTP_ASYNC_RESULT*>(information)->dwError});
    case WINHTTP_CALLBACK_STATUS_HANDLE_CLOSING:
      // This is the last call for this handle. A thread that still works on the queue has its own reference.
      const auto last = std::move(exchange->self_);
  }
}

void Exchange::Take(Event event) {
  const auto self = shared_from_this();
  {
    const std::lock_guard lock(mutex_);
    try {
      events_.push_back(event);
    } catch (const std::bad_alloc&) {
      finished_ = true;  // without a report, for which there is no memory
    }
    if (std::exchange(working_, true)) return;
  }
  Work();
}

// Handles events until there are none. The caller has set working_.
void Exchange::Work() {
  for (;;) {
    Event event;
    {
      const std::lock_guard lock(mutex_);
      if (finished_ || events_.empty()) {
        working_ = false;
        if (!finished_ || std::exchange(closed_, true)) return;
        break;
      }
      event = events_.front();
      events_.pop_front();
    }
    // No exception may reach the system. When there is no memory, the answer fails.
    try {
      Handle(event);
    } catch (const std::bad_alloc&) {
      FailForWantOfMemory();
    }
  }
  CloseHandles();
}

void Exchange::Handle(const Event& event) {
  switch (event.kind) {
    case Event::Kind::kConnecting:
      connected_afresh_ = true;
      return;
    case Event::Kind::kSent:
      if (!WinHttpReceiveResponse(request_, nullptr)) OnError(GetLastError());
      return;
    case Event::Kind::kHead:
      return OnHead();
    case Event::Kind::kAvailable:
      if (event.number == 0) return End();
      if (!WinHttpReadData(request_, buffer_.data(), std::min<DWORD>(event.number, buffer_.size()), nullptr)) {
        OnError(GetLastError());
      }
      return;
    case Event::Kind::kRead:
      return OnRead(event.number);
    case Event::Kind::kError:
      return OnError(event.number);
  }
}

std::optional<std::string> Exchange::HeaderLines() const {
  DWORD bytes = 0;
  WinHttpQueryHeaders(request_, WINHTTP_QUERY_RAW_HEADERS_CRLF, WINHTTP_HEADER_NAME_BY_INDEX, nullptr, &bytes,
                      WINHTTP_NO_HEADER_INDEX);
  if (bytes == 0 || bytes > kMaxHead) return std::nullopt;
  std::wstring lines(bytes / sizeof(wchar_t) + 1, L'\0');
  if (!WinHttpQueryHeaders(request_, WINHTTP_QUERY_RAW_HEADERS_CRLF, WINHTTP_HEADER_NAME_BY_INDEX, lines.data(), &bytes,
                           WINHTTP_NO_HEADER_INDEX)) {
    return std::nullopt;
  }
  lines.resize(bytes / sizeof(wchar_t));
  return HeaderBytes(lines);
}

void Exchange::OnHead() {
  const auto lines = HeaderLines();
  bool good = lines.has_value();
  for (std::size_t at = 0; good && at < lines->size();) {
    const std::size_t end = std::min(lines->find('\n', at), lines->size());
    good = head_.AddLine(std::string_view(*lines).substr(at, end - at));
    at = end + 1;
  }
  if (!good || (!head_.complete() && !head_.AddLine("")) || !head_.complete()) {
    return Report(ExchangeReport::Kind::kFailed);
  }
  if (!head_.location().empty()) return Report(ExchangeReport::Kind::kRedirect, head_.location());
  decoder_.emplace(head_.coding(), kMaxBodyBytes);
  AskForMore();
}

// Asks how many bytes there are before it reads them. A read alone would wait for a full buffer.
void Exchange::AskForMore() {
  if (!WinHttpQueryDataAvailable(request_, nullptr)) OnError(GetLastError());
}

void Exchange::OnRead(DWORD bytes) {
  if (bytes == 0) return End();
  if (received_ == 0) Report(ExchangeReport::Kind::kFirstBytes);
  received_ += bytes;
  if (!decoder_->Add(std::string_view(buffer_.data(), bytes), body_)) return Report(ExchangeReport::Kind::kFailed);
  AskForMore();
}

// The system takes a body that ends before its announced length for a whole one, so the length is compared here. For a
// chunked body there is nothing to compare: one that breaks off is noticed only when the system notices it.
void Exchange::End() {
  const bool bodyless = head_.status() == 204 || head_.status() == 304;
  const bool whole = bodyless || !head_.content_length() || *head_.content_length() == received_;
  if (!whole || !decoder_->AtEnd()) return Report(ExchangeReport::Kind::kFailed);
  Report(ExchangeReport::Kind::kWhole, std::move(body_));
}

void Exchange::OnError(DWORD error) {
  const bool connection_gone = error == ERROR_WINHTTP_CONNECTION_ERROR || error == ERROR_WINHTTP_RESEND_REQUEST ||
                               error == ERROR_WINHTTP_INVALID_SERVER_RESPONSE;
  const bool never_answered = head_.status() == 0;
  if (connection_gone && never_answered && !connected_afresh_ && sends_ < kMostSends && Send()) return;
  Report(ExchangeReport::Kind::kFailed);
}

void Exchange::FailForWantOfMemory() {
  std::string().swap(body_);
  try {
    Report(ExchangeReport::Kind::kFailed);
  } catch (const std::bad_alloc&) {
    const std::lock_guard lock(mutex_);
    finished_ = true;  // in silence
  }
}

void Exchange::Report(ExchangeReport::Kind kind, std::string text) {
  {
    const std::lock_guard lock(mutex_);
    if (finished_) return;
  }
  sink_({kind, std::move(text)});
  if (kind == ExchangeReport::Kind::kFirstBytes) return;
  const std::lock_guard lock(mutex_);
  finished_ = true;
}

}  // namespace quenlar::win32
