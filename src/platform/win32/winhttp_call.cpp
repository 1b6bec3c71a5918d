#include "platform/win32/winhttp_call.h"

#include <algorithm>
#include <new>
#include <utility>

#include "platform/answer_head.h"
#include "platform/win32/wide.h"

namespace quenlar::win32 {
namespace {

// A head larger than this is refused, in bytes of wide characters.
constexpr DWORD kMaxHead = kMaxHeadBytes * sizeof(wchar_t);

// That a server has closed an idle connection shows only when the connection is used again. Each such failure removes
// one connection from the system's store.
constexpr int kMostSends = 8;

constexpr int kSendLimit = 30'000, kReceiveLimit = 60'000;  // milliseconds

void SetOption(HINTERNET handle, DWORD option, DWORD value) { WinHttpSetOption(handle, option, &value, sizeof value); }

// The system would name the address to which it connects.
bool NameHost(HINTERNET request, const WireAddress& address) {
  const bool usual_port = address.port == (address.secure ? 443 : 80);
  const std::string line = "Host: " + address.host + (usual_port ? "" : ":" + std::to_string(address.port)) + "\r\n";
  return WinHttpAddRequestHeaders(request, ToWide(line).c_str(), static_cast<DWORD>(-1),
                                  WINHTTP_ADDREQ_FLAG_ADD | WINHTTP_ADDREQ_FLAG_REPLACE) != FALSE;
}

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

void HttpCall::Begin(HINTERNET session, const WireAddress& address, const Limits& limits, std::wstring headers,
                     const std::string& ip) {
  headers_ = std::move(headers);
  session_ = session;
  if (!Open(session, address, limits, ip) || !Send()) {
    const DWORD error = GetLastError();
    const std::lock_guard lock(mutex_);
    events_.push_back({Event::Kind::kError, error});  // behind what the system has told inside the calls
  }
  Work();
}

bool HttpCall::Open(HINTERNET session, const WireAddress& address, const Limits& limits, const std::string& ip) {
  connection_ = WinHttpConnect(session, ToWide(ip.empty() ? address.host : ip).c_str(), address.port, 0);
  if (!connection_) return false;
  const wchar_t* types[] = {L"*/*", nullptr};
  const DWORD secure = address.secure ? WINHTTP_FLAG_SECURE : 0;
  request_ = WinHttpOpenRequest(connection_, L"GET", ToWide(address.target).c_str(), nullptr, WINHTTP_NO_REFERER, types,
                                secure | WINHTTP_FLAG_ESCAPE_DISABLE | WINHTTP_FLAG_ESCAPE_DISABLE_QUERY);
  if (!request_) return false;
  self_ = shared_from_this();
  if (!ip.empty() && !NameHost(request_, address)) return false;
  auto context = reinterpret_cast<DWORD_PTR>(this);
  WinHttpSetOption(request_, WINHTTP_OPTION_CONTEXT_VALUE, &context, sizeof context);
  // The system must not follow redirects itself, because their targets have to be checked. It must not send passwords
  // or cookies either.
  SetOption(request_, WINHTTP_OPTION_REDIRECT_POLICY, WINHTTP_OPTION_REDIRECT_POLICY_NEVER);
  SetOption(request_, WINHTTP_OPTION_DISABLE_FEATURE, WINHTTP_DISABLE_COOKIES | WINHTTP_DISABLE_AUTHENTICATION);
  SetOption(request_, WINHTTP_OPTION_AUTOLOGON_POLICY, WINHTTP_AUTOLOGON_SECURITY_LEVEL_HIGH);
  SetOption(request_, WINHTTP_OPTION_RECEIVE_RESPONSE_TIMEOUT, static_cast<DWORD>(limits.response.count()));
  if (limits.connect.count() > 0) {
    WinHttpSetTimeouts(request_, 0, static_cast<int>(limits.connect.count()), kSendLimit, kReceiveLimit);
  }
  // Some servers ask for a certificate of the client and can do without one. They are told that there is none; if
  // nothing is said, the request fails.
  if (address.secure) {
    WinHttpSetOption(request_, WINHTTP_OPTION_CLIENT_CERT_CONTEXT, WINHTTP_NO_CLIENT_CERT_CONTEXT, 0);
  }
  return true;
}

bool HttpCall::Send() {
  ++sends_;
  return WinHttpSendRequest(request_, headers_.c_str(), static_cast<DWORD>(-1), nullptr, 0, 0,
                            reinterpret_cast<DWORD_PTR>(this)) != FALSE;
}

void HttpCall::Abandon() {
  {
    const std::lock_guard lock(mutex_);
    finished_ = true;
    if (working_ || closed_) return;
    closed_ = true;
  }
  CloseHandles();
}

void HttpCall::CloseHandles() {
  if (request_) WinHttpCloseHandle(request_);
  if (connection_) WinHttpCloseHandle(connection_);
}

void HttpCall::Finish() {
  const std::lock_guard lock(mutex_);
  finished_ = true;
}

void CALLBACK HttpCall::OnStatus(HINTERNET, DWORD_PTR context, DWORD status, void* information, DWORD length) {
  auto* call = reinterpret_cast<HttpCall*>(context);
  if (!call) return;
  switch (status) {
    case WINHTTP_CALLBACK_STATUS_CONNECTING_TO_SERVER:
      return call->OnConnecting(information ? static_cast<const wchar_t*>(information) : L"");
    case WINHTTP_CALLBACK_STATUS_SENDREQUEST_COMPLETE:
      return call->Take({Event::Kind::kSent});
    case WINHTTP_CALLBACK_STATUS_HEADERS_AVAILABLE:
      return call->Take({Event::Kind::kHead});
    case WINHTTP_CALLBACK_STATUS_DATA_AVAILABLE:
      return call->Take({Event::Kind::kAvailable, *static_cast<DWORD*>(information)});
    case WINHTTP_CALLBACK_STATUS_READ_COMPLETE:
      return call->Take({Event::Kind::kRead, length});
    case WINHTTP_CALLBACK_STATUS_SECURE_FAILURE:
      return call->Take({Event::Kind::kCertificate, *static_cast<DWORD*>(information)});
    case WINHTTP_CALLBACK_STATUS_REQUEST_ERROR:
      return call->Take({Event::Kind::kError, static_cast<WINHTTP_ASYNC_RESULT*>(information)->dwError});
    case WINHTTP_CALLBACK_STATUS_HANDLE_CLOSING:
      // This is the last call for this handle. A thread that still works on the queue has its own reference.
      const auto last = std::move(call->self_);
  }
}

void HttpCall::OnConnecting(std::wstring_view address) {
  if (MayConnect(address)) return Take({Event::Kind::kConnecting});
  // Another thread may be at work, and would come to the event too late. Wine goes on with a request whose handle has
  // been closed; a session that may speak no version of TLS that is left fails before its first byte.
  {
    const std::lock_guard lock(mutex_);
    if (!finished_ && !closed_) SetOption(session_, WINHTTP_OPTION_SECURE_PROTOCOLS, WINHTTP_FLAG_SECURE_PROTOCOL_SSL2);
  }
  Take({Event::Kind::kError, kForbidden});
  {
    const std::lock_guard lock(mutex_);
    if (std::exchange(closed_, true)) return;
  }
  CloseHandles();
}

void HttpCall::Take(Event event) {
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
void HttpCall::Work() {
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
      OnNoMemory();
      Finish();
    }
  }
  CloseHandles();
}

void HttpCall::Handle(const Event& event) {
  switch (event.kind) {
    case Event::Kind::kConnecting:
      connected_afresh_ = true;
      return;
    case Event::Kind::kSent:
      sent_ = true;
      if (!WinHttpReceiveResponse(request_, nullptr)) OnError(GetLastError());
      return;
    case Event::Kind::kHead:
      return OnHeadAvailable();
    case Event::Kind::kAvailable:
      if (event.number == 0) return OnRead(0);
      if (!WinHttpReadData(request_, buffer_.data(), std::min<DWORD>(event.number, buffer_.size()), nullptr)) {
        OnError(GetLastError());
      }
      return;
    case Event::Kind::kRead:
      return OnRead(event.number);
    case Event::Kind::kCertificate:
      certificate_faults_ |= event.number;
      return;
    case Event::Kind::kError:
      return OnError(event.number);
  }
}

std::optional<std::string> HttpCall::HeaderLines() const {
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

void HttpCall::OnHeadAvailable() {
  has_head_ = true;
  if (OnHead(HeaderLines()) == Next::kFinish) return Finish();
  AskForMore();
}

// Asks how many bytes there are before it reads them. A read alone would wait for a full buffer.
void HttpCall::AskForMore() {
  if (!WinHttpQueryDataAvailable(request_, nullptr)) OnError(GetLastError());
}

void HttpCall::OnRead(DWORD bytes) {
  if (bytes == 0) {
    OnEnd();
    return Finish();
  }
  if (OnBytes(std::string_view(buffer_.data(), bytes)) == Next::kFinish) return Finish();
  AskForMore();
}

void HttpCall::OnError(DWORD error) {
  const bool connection_gone = error == ERROR_WINHTTP_CONNECTION_ERROR || error == ERROR_WINHTTP_RESEND_REQUEST ||
                               error == ERROR_WINHTTP_INVALID_SERVER_RESPONSE ||
                               error == WSAECONNRESET;  // Wine hands the socket's own error on
  if (connection_gone && !has_head_ && !connected_afresh_ && sends_ < kMostSends && Send()) return;
  OnFailure(error);
  Finish();
}

}  // namespace quenlar::win32
