#include "platform/win32/winhttp_session.h"

#include <string>
#include <string_view>

#include "base/ascii.h"
#include "platform/win32/wide.h"
#include "platform/win32/winhttp_call.h"

namespace quenlar::win32 {
namespace {

constexpr int kConnectLimit = 30'000, kSendLimit = 30'000, kReceiveLimit = 60'000;  // milliseconds

// "http://host:port/" as the system wants it: "host:port".
std::wstring ProxyName(std::string_view proxy) {
  if (StartsWithIgnoreCase(proxy, "http://")) proxy.remove_prefix(7);
  return ToWide(proxy.substr(0, proxy.find('/')));
}

DWORD AccessOf(ProxyChoice::Kind kind) {
  switch (kind) {
    case ProxyChoice::Kind::kGiven:
      return WINHTTP_ACCESS_TYPE_NAMED_PROXY;
    case ProxyChoice::Kind::kNone:
      return WINHTTP_ACCESS_TYPE_NO_PROXY;
    case ProxyChoice::Kind::kSystem:
      break;
  }
  return WINHTTP_ACCESS_TYPE_AUTOMATIC_PROXY;
}

}  // namespace

HINTERNET OpenSession(std::string_view agent, const ProxyChoice& proxy) {
  const std::wstring name = ProxyName(proxy.address);
  const bool named = proxy.kind == ProxyChoice::Kind::kGiven;
  HINTERNET session =
      WinHttpOpen(agent.empty() ? nullptr : ToWide(agent).c_str(), AccessOf(proxy.kind),
                  named ? name.c_str() : WINHTTP_NO_PROXY_NAME, WINHTTP_NO_PROXY_BYPASS, WINHTTP_FLAG_ASYNC);
  if (!session) return nullptr;
  WinHttpSetTimeouts(session, 0, kConnectLimit, kSendLimit, kReceiveLimit);
  WinHttpSetStatusCallback(session, HttpCall::OnStatus,
                           WINHTTP_CALLBACK_FLAG_ALL_COMPLETIONS | WINHTTP_CALLBACK_FLAG_HANDLES |
                               WINHTTP_CALLBACK_FLAG_CONNECT_TO_SERVER | WINHTTP_CALLBACK_FLAG_SECURE_FAILURE,
                           0);
  return session;
}

}  // namespace quenlar::win32
