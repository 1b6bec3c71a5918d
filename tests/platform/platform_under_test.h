// What the contract suites run over: the system's own implementations of the platform interfaces, and the fakes.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "base/status.h"
#include "platform/clock.h"
#include "platform/code_page.h"
#include "platform/event_loop.h"
#include "platform/files.h"
#include "platform/idna.h"
#include "platform/interface_table.h"
#include "platform/loopback_server.h"
#include "platform/name_lookups.h"
#include "platform/page_fetcher.h"
#include "platform/registry.h"
#include "platform/text_decoder.h"
#include "platform/web_client.h"

namespace quenlar {

// Each test has its own.
class TestPlatform {
 public:
  virtual ~TestPlatform() = default;

  [[nodiscard]] virtual EventLoop& loop() = 0;
  // False where Wait lets the time jump.
  [[nodiscard]] virtual bool LoopSleeps() const { return true; }

  [[nodiscard]] virtual Files& files() = 0;
  // The same files through another object, as another program sees them.
  [[nodiscard]] virtual std::unique_ptr<Files> OtherFiles() = 0;
  // An empty folder of this test, removed with the platform; with forward slashes, without one at the end.
  [[nodiscard]] virtual std::string Folder() = 0;
  // The names of everything in a folder, hidden ones included, sorted.
  [[nodiscard]] virtual std::vector<std::string> Names(const std::string& folder) = 0;

  // A key below which this test may write.
  [[nodiscard]] virtual std::string RegistryKey() { return "Software\\Quenlar\\Project"; }
  [[nodiscard]] virtual Registry& registry() = 0;
  // The registry as the next start of the program opens it; the first one is still there.
  [[nodiscard]] virtual std::unique_ptr<Registry> ReopenRegistry() = 0;

  // A fetcher on loop(). With a proxy ("http://127.0.0.1:8080") everything goes through it; with "" nothing does,
  // whatever the environment says. The certificates in the file `authorities` (PEM) are trusted, if it is named.
  [[nodiscard]] virtual std::unique_ptr<PageFetcher> MakeFetcher(const std::string& proxy,
                                                                 const std::string& authorities) = 0;
  // A crawler's client on loop(), with proxy and authorities as above. `look_up` finds the addresses that are judged;
  // empty: the system does.
  [[nodiscard]] virtual std::unique_ptr<WebClient> MakeWebClient(const std::string& proxy,
                                                                 const std::string& authorities,
                                                                 LookUpName look_up) = 0;
  // False where the system's HTTP client is Wine's: it takes torn heads and chunks for answers, reads heads without
  // end, keeps connections on which something follows the answer, and knows them again in another fetcher. Its faults
  // are none of this program, so tests expect there that such a download ends, and that the next ones work.
  [[nodiscard]] virtual bool HttpIsStrict() const { return true; }
  // Serves `handler` under ServerAddress() ("http://127.0.0.1:4711") from now on; once a platform.
  virtual void Serve(ServeHandler handler) = 0;
  [[nodiscard]] virtual std::string ServerAddress() = 0;

  // The most memory that this process has held at a time since the last call of ForgetPeakMemory, in bytes; empty where
  // nobody can tell.
  virtual void ForgetPeakMemory() {}
  [[nodiscard]] virtual std::optional<std::uint64_t> PeakMemory() { return std::nullopt; }

  [[nodiscard]] virtual const CodePage& code_page() = 0;
  [[nodiscard]] virtual const TextDecoder& text_decoder() = 0;
  [[nodiscard]] virtual const Idna& idna() = 0;
  [[nodiscard]] virtual const Clock& clock() = 0;
  [[nodiscard]] virtual InterfaceTable& interfaces() = 0;
};

// The system's own implementations: platform_under_test_posix.cpp, platform_under_test_win32.cpp.
std::unique_ptr<TestPlatform> MakeTestPlatform();
// The fakes of tests/support.
std::unique_ptr<TestPlatform> MakeFakeTestPlatform();

using TestPlatformMaker = std::unique_ptr<TestPlatform> (*)();

// A contract suite is a fixture of this kind and runs once over each.
class PlatformContract : public testing::TestWithParam<TestPlatformMaker> {
 protected:
  std::unique_ptr<TestPlatform> platform_ = GetParam()();
};

inline std::string PlatformName(const testing::TestParamInfo<TestPlatformMaker>& info) {
  return info.param == MakeFakeTestPlatform ? "Fake" : "System";
}

// Pumps until `condition` holds; false after half a minute or so.
template <typename Condition>
[[nodiscard]] bool PumpUntil(EventLoop& loop, Condition condition) {
  const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(30);
  while (!condition()) {
    if (std::chrono::steady_clock::now() > deadline) return false;
    loop.Wait(std::chrono::milliseconds(50));
  }
  return true;
}

}  // namespace quenlar
