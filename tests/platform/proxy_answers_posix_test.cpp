// What a proxy's answer to CONNECT means. The client of Windows gives it as the answer of the host.
#include "hostile_web.h"

namespace quenlar {
namespace {

class ProxyAnswers : public HostileWeb {};

TEST_F(ProxyAnswers, AHostThatTheProxyCannotReachHasNoConnection) {
  UseClient("http://" + server_, "");
  for (const char* status : {"502", "503", "504"}) {
    ExpectFailure("https://" + std::string(status) + ".example/", WebFailure::kNoConnection);
  }
}

TEST_F(ProxyAnswers, EveryOtherRefusalIsTheProxysOwn) {
  UseClient("http://" + server_, "");
  for (const char* status : {"302", "403", "407", "500", "505"}) {
    ExpectFailure("https://" + std::string(status) + ".example/", WebFailure::kProxy);
  }
}

}  // namespace
}  // namespace quenlar
