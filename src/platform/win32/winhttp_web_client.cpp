#include "platform/win32/winhttp_web_client.h"

#include <optional>
#include <string>
#include <unordered_map>
#include <utility>

#include "platform/web_dispatcher.h"
#include "platform/win32/look_up_name.h"
#include "platform/win32/outlet.h"
#include "platform/win32/wide.h"
#include "platform/win32/winhttp_session.h"
#include "platform/win32/winhttp_web_call.h"

namespace quenlar {
namespace {

using win32::WebCall;
using win32::WebReport;

constexpr std::size_t kMostConnections = 1024;
constexpr DWORD kHttpProtocolOption = 133, kHttp2Flag = 1;  // of Windows 10; older headers do not name them

// The proxy that the user's settings name, or none; the system's own way where they name a script.
ProxyChoice SystemProxy() {
  WINHTTP_CURRENT_USER_IE_PROXY_CONFIG settings{};
  if (!WinHttpGetIEProxyConfigForCurrentUser(&settings)) return ProxyChoice::None();
  ProxyChoice choice = ProxyChoice::None();
  if (settings.lpszProxy) choice = ProxyChoice::Given(win32::FromWide(settings.lpszProxy));
  if (settings.lpszAutoConfigUrl) choice = {};
  for (wchar_t* text : {settings.lpszProxy, settings.lpszProxyBypass, settings.lpszAutoConfigUrl}) {
    if (text) GlobalFree(text);
  }
  return choice;
}

// Each host has a session of its own: closing it is the only way to close a connection that the system keeps.
class WinHttpWebTransport final : public WebTransport {
 public:
  WinHttpWebTransport(EventLoop& loop, const ProxyChoice& proxy)
      : proxy_(proxy.kind == ProxyChoice::Kind::kSystem ? SystemProxy() : proxy),
        outlet_(std::make_shared<Outlet>(*this, loop)) {
    WSADATA facts;
    static_cast<void>(WSAStartup(MAKEWORD(2, 2), &facts));
  }
  WinHttpWebTransport(const WinHttpWebTransport&) = delete;
  WinHttpWebTransport& operator=(const WinHttpWebTransport&) = delete;
  ~WinHttpWebTransport() override {
    outlet_->Cut();
    for (auto& [id, exchange] : exchanges_) exchange.call->Abandon();
    for (const auto& [host, session] : sessions_) WinHttpCloseHandle(session);
  }

  void SetTransportListener(WebTransportListener* listener) override { listener_ = listener; }
  [[nodiscard]] bool UsesProxy(const WireAddress&) const override { return proxy_.kind == ProxyChoice::Kind::kGiven; }
  // Certificates are checked against the name by which the system connects. A script may send it to a proxy.
  [[nodiscard]] bool ChoosesAddress(const WireAddress& target) const override {
    return target.secure || proxy_.kind != ProxyChoice::Kind::kNone;
  }
  void Begin(const WebExchange& exchange) override;
  [[nodiscard]] std::chrono::steady_clock::time_point LastByte(WebExchangeId id) const override {
    return exchanges_.at(id).call->last_byte();
  }
  [[nodiscard]] Outcome Take(WebExchangeId id) override;
  void CloseIdle(WebHostId host) override;

 private:
  using Outlet = win32::Outlet<WinHttpWebTransport>;
  struct Exchange {
    WebHostId host;
    bool keep_wire;
    std::shared_ptr<WebCall> call;
    WebHead head = {};
    std::string head_text = {};
    std::optional<WebReport::End> end = {};
  };

  [[nodiscard]] HINTERNET SessionOf(WebHostId host, bool http2);
  void OnReport(WebExchangeId id, WebReport& report);

  const ProxyChoice proxy_;
  WebTransportListener* listener_ = nullptr;
  std::shared_ptr<Outlet> outlet_;
  std::unordered_map<WebExchangeId, Exchange> exchanges_;
  std::unordered_map<WebHostId, HINTERNET> sessions_;
};

HINTERNET WinHttpWebTransport::SessionOf(WebHostId host, bool http2) {
  const auto known = sessions_.find(host);
  if (known != sessions_.end()) return known->second;
  HINTERNET session = win32::OpenSession("", proxy_);
  if (!session) return nullptr;
  DWORD protocols = kHttp2Flag;
  if (http2) WinHttpSetOption(session, kHttpProtocolOption, &protocols, sizeof protocols);
  sessions_[host] = session;
  return session;
}

void WinHttpWebTransport::Begin(const WebExchange& wanted) {
  auto sink = [outlet = outlet_, id = wanted.id](WebReport report) {
    // Tasks must be copyable, bodies should not be copied.
    auto shared = std::make_shared<WebReport>(std::move(report));
    outlet->Post([id, shared](WinHttpWebTransport& transport) { transport.OnReport(id, *shared); });
  };
  const auto call = std::make_shared<WebCall>(wanted, std::move(sink));
  exchanges_.emplace(wanted.id, Exchange{wanted.host, wanted.request.keep_wire, call});
  call->Send(SessionOf(wanted.host, !wanted.request.keep_wire), ChoosesAddress(wanted.target));
}

void WinHttpWebTransport::OnReport(WebExchangeId id, WebReport& report) {
  const auto exchange = exchanges_.find(id);
  if (exchange == exchanges_.end()) return;
  if (report.head) {
    exchange->second.head = *report.head;
    exchange->second.head_text = std::move(report.head_text);
    return listener_->OnTransportHead(id, *report.head);
  }
  exchange->second.end = std::move(report.end);
  listener_->OnTransportEnd(id);
}

WebTransport::Outcome WinHttpWebTransport::Take(WebExchangeId id) {
  Exchange exchange = std::move(exchanges_.extract(id).mapped());
  Outcome outcome;
  if (exchange.end) {
    outcome = {std::move(exchange.end->answer), exchange.end->kept};
  } else {
    exchange.call->Abandon();
    outcome.answer.bytes_received = exchange.call->bytes_received();
    if (exchange.keep_wire) {
      outcome.answer.wire = WebWire{.request = exchange.call->request_head(), .head = std::move(exchange.head_text)};
    }
    outcome.answer.head = std::move(exchange.head);
  }
  if (!outcome.kept) CloseIdle(exchange.host);
  return outcome;
}

void WinHttpWebTransport::CloseIdle(WebHostId host) {
  const auto session = sessions_.extract(host);
  if (!session.empty()) WinHttpCloseHandle(session.mapped());
}

}  // namespace

std::unique_ptr<WebClient> MakeWinHttpWebClient(EventLoop& loop, const ProxyChoice& proxy, LookUpName look_up) {
  return std::make_unique<WebDispatcher>(loop, std::make_unique<WinHttpWebTransport>(loop, proxy),
                                         look_up ? std::move(look_up) : LookUpName(&win32::LookUpByGetAddrInfo),
                                         kMostConnections);
}

}  // namespace quenlar
