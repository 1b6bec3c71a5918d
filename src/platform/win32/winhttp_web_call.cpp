#include "platform/win32/winhttp_web_call.h"

#include <algorithm>
#include <new>
#include <utility>

#include "base/ascii.h"
#include "platform/win32/wide.h"
#include "platform/win32/winhttp_head_lines.h"

namespace quenlar::win32 {
namespace {

// The caller ends what is too slow; the system's own limit bounds how long it holds on to a request that was given up.
constexpr std::chrono::milliseconds kSystemsExtraTime{5'000};

std::string HeaderLinesOf(const WebRequest& request) {
  std::string lines = "Accept-Encoding: gzip, deflate\r\n";
  if (!request.user_agent.empty()) lines += "User-Agent: " + request.user_agent + "\r\n";
  if (!request.if_none_match.empty()) lines += "If-None-Match: " + request.if_none_match + "\r\n";
  if (!request.if_modified_since.empty()) lines += "If-Modified-Since: " + request.if_modified_since + "\r\n";
  return lines;
}

std::string RequestHead(const WireAddress& target, const std::string& lines) {
  const bool usual_port = target.port == (target.secure ? 443 : 80);
  return "GET " + target.target + " HTTP/1.1\r\nHost: " + target.host +
         (usual_port ? "" : ":" + std::to_string(target.port)) + "\r\nAccept: */*\r\n" + lines + "\r\n";
}

std::string AsHost(const std::string& ip) { return ip.find(':') == std::string::npos ? ip : "[" + ip + "]"; }

// As the system writes it: with a scope, a port or brackets at times.
std::optional<IpAddress> AddressOf(std::wstring_view text) {
  std::string address = FromWide(text);
  if (address.starts_with('[')) {
    address = address.substr(1, address.find(']') - 1);
  } else if (std::count(address.begin(), address.end(), ':') == 1) {
    address.resize(address.find(':'));
  }
  return ParseIpAddress(std::string_view(address).substr(0, address.find('%')));
}

}  // namespace

WebCall::WebCall(const WebExchange& exchange, Sink sink)
    : sink_(std::move(sink)),
      target_(exchange.target),
      private_addresses_(exchange.request.private_addresses),
      behind_proxy_(!exchange.address),
      keep_wire_(exchange.request.keep_wire),
      body_limit_(exchange.request.body_limit),
      limits_{.response = exchange.request.silence_limit + kSystemsExtraTime,
              .connect = exchange.request.connect_limit},
      header_lines_(HeaderLinesOf(exchange.request)),
      request_head_(RequestHead(exchange.target, header_lines_)),
      last_byte_(std::chrono::steady_clock::now().time_since_epoch().count()),
      ip_(exchange.address ? exchange.address->Text() : "") {}

void WebCall::Send(HINTERNET session, bool by_name) {
  Begin(session, target_, limits_, ToWide(header_lines_), by_name ? "" : AsHost(ip_));
}

bool WebCall::MayConnect(std::wstring_view text) const {
  if (behind_proxy_) return true;
  const auto address = AddressOf(text);
  if (address) {
    const std::lock_guard lock(ip_mutex_);
    ip_ = address->Text();
  }
  return private_addresses_ || (address && IsPublicAddress(*address));
}

void WebCall::NoteBytes(std::size_t count) {
  last_byte_ = std::chrono::steady_clock::now().time_since_epoch().count();
  bytes_received_ += count;
}

// Whether the server leaves the connection open behind its answer.
bool WebCall::KeepsConnection(std::string_view status_line) const {
  const std::string* const connection = head_.head().Find("connection");
  if (connection != nullptr && ContainsIgnoreCase(*connection, "close")) return false;
  const bool old = status_line.starts_with("HTTP/1.0") || status_line.starts_with("HTTP/0");
  return !old || (connection != nullptr && ContainsIgnoreCase(*connection, "keep-alive"));
}

HttpCall::Next WebCall::OnHead(const std::optional<std::string>& lines) {
  if (!AddHeadLines(lines, head_)) return End(WebFailure::kBroken, "a malformed head");
  NoteBytes(lines->size());
  {
    const std::lock_guard lock(ip_mutex_);
    head_.head().ip = ip_;
  }
  if (keep_wire_) head_text_ = *lines;
  keeps_connection_ = KeepsConnection(*lines);
  body_.Begin(head_.coding(), body_limit_);
  sink_({.head = head_.head(), .head_text = head_text_, .end = {}});
  return Next::kReadOn;
}

HttpCall::Next WebCall::OnBytes(std::string_view bytes) {
  NoteBytes(bytes.size());
  body_bytes_ += bytes.size();
  if (keep_wire_) wire_body_ += bytes;
  switch (body_.Add(bytes)) {
    case WebBody::Outcome::kGoesOn:
      return Next::kReadOn;
    case WebBody::Outcome::kFull:
      keeps_connection_ = false;
      return End(WebFailure::kNone, "");
    case WebBody::Outcome::kBroken:
      break;
  }
  return End(WebFailure::kBroken, "the body is not in the encoding that its head names");
}

// See Exchange::OnEnd.
void WebCall::OnEnd() {
  const int status = head_.head().status;
  const bool bodyless = status == 204 || status == 304;
  if (!bodyless && head_.content_length() && *head_.content_length() != body_bytes_) {
    End(WebFailure::kBroken, "the body is cut short");
  } else if (!body_.AtEnd()) {
    End(WebFailure::kBroken, "the compressed body is cut short");
  } else {
    End(WebFailure::kNone, "");
  }
}

HttpCall::Next WebCall::End(WebFailure failure, std::string message) {
  WebReport::End end;
  end.kept = failure == WebFailure::kNone && keeps_connection_ && !behind_proxy_;
  WebAnswer& answer = end.answer;
  answer.failure = failure;
  answer.message = std::move(message);
  answer.bytes_received = bytes_received_;
  answer.body = body_.Take();
  answer.truncated = body_.truncated();
  if (head_.complete()) answer.head = std::move(head_.head());
  if (keep_wire_ && sent()) {
    answer.wire = WebWire{request_head_, std::move(head_text_), std::move(wire_body_), head_.chunked()};
  }
  sink_({.head = {}, .head_text = {}, .end = std::move(end)});
  return Next::kFinish;
}

WebFailure WebCall::FailureOfTls(DWORD error) const {
  constexpr DWORD kCertificateFaults =
      WINHTTP_CALLBACK_STATUS_FLAG_CERT_REV_FAILED | WINHTTP_CALLBACK_STATUS_FLAG_INVALID_CERT |
      WINHTTP_CALLBACK_STATUS_FLAG_CERT_REVOKED | WINHTTP_CALLBACK_STATUS_FLAG_INVALID_CA |
      WINHTTP_CALLBACK_STATUS_FLAG_CERT_CN_INVALID | WINHTTP_CALLBACK_STATUS_FLAG_CERT_DATE_INVALID |
      WINHTTP_CALLBACK_STATUS_FLAG_CERT_WRONG_USAGE;
  if ((certificate_faults() & kCertificateFaults) != 0) return WebFailure::kCertificate;
  if ((certificate_faults() & WINHTTP_CALLBACK_STATUS_FLAG_SECURITY_CHANNEL_ERROR) != 0) return WebFailure::kNoTls;
  return error == ERROR_WINHTTP_SECURE_CHANNEL_ERROR ? WebFailure::kNoTls : WebFailure::kCertificate;
}

WebFailure WebCall::FailureOf(DWORD error) const {
  const bool before_request = !sent() && head_.head().status == 0;
  switch (error) {
    case kForbidden:
      return WebFailure::kPrivateAddress;
    case ERROR_NOT_ENOUGH_MEMORY:
    case ERROR_OUTOFMEMORY:
      return WebFailure::kNoMemory;
    case ERROR_WINHTTP_INVALID_URL:
    case ERROR_WINHTTP_UNRECOGNIZED_SCHEME:
      return WebFailure::kBadUrl;
    case ERROR_WINHTTP_NAME_NOT_RESOLVED:
      return behind_proxy_ ? WebFailure::kProxy : WebFailure::kNoName;
    case ERROR_WINHTTP_CANNOT_CONNECT:
      return behind_proxy_ ? WebFailure::kProxy : WebFailure::kNoConnection;
    case ERROR_WINHTTP_TIMEOUT:
    case WSAETIMEDOUT:
      if (!before_request) return WebFailure::kTimeout;
      return behind_proxy_ ? WebFailure::kProxy : WebFailure::kNoConnection;
    case ERROR_WINHTTP_SECURE_FAILURE:
    case ERROR_WINHTTP_SECURE_CHANNEL_ERROR:
    case ERROR_WINHTTP_SECURE_INVALID_CA:
    case ERROR_WINHTTP_SECURE_CERT_DATE_INVALID:
    case ERROR_WINHTTP_SECURE_CERT_CN_INVALID:
    case ERROR_WINHTTP_SECURE_CERT_REVOKED:
    case ERROR_WINHTTP_SECURE_INVALID_CERT:
    case ERROR_WINHTTP_SECURE_CERT_WRONG_USAGE:
      return FailureOfTls(error);
    default:
      return before_request && target_.secure ? WebFailure::kNoTls : WebFailure::kBroken;
  }
}

void WebCall::OnFailure(DWORD error) {
  if (error == kForbidden) {
    End(WebFailure::kPrivateAddress, target_.host + " leads to an address that is not public");
  } else {
    End(FailureOf(error), "the system's HTTP client gave error " + std::to_string(error));
  }
}

void WebCall::OnNoMemory() {
  static_cast<void>(body_.Take());
  std::string().swap(wire_body_);
  try {
    End(WebFailure::kNoMemory, "");
  } catch (const std::bad_alloc&) {
    return;  // in silence, until the caller's time limit
  }
}

}  // namespace quenlar::win32
