// The POSIX implementations under test.
#include <fstream>
#include <utility>

#include "platform/posix/clock.h"
#include "platform/posix/curl_page_fetcher.h"
#include "platform/posix/curl_web_client.h"
#include "platform/posix/event_loop.h"
#include "platform/posix/file_registry.h"
#include "platform/posix/files.h"
#include "platform/posix/iconv_text_decoder.h"
#include "platform/posix/idn2_idna.h"
#include "platform/posix/loopback_server.h"
#include "platform/posix/sys_interface_table.h"
#include "platform/posix/windows1252_code_page.h"
#include "platform_under_test.h"
#include "posix_folder.h"

namespace quenlar {
namespace {

class PosixTestPlatform : public TestPlatform {
 public:
  [[nodiscard]] EventLoop& loop() override { return *loop_; }
  [[nodiscard]] Files& files() override { return files_; }
  [[nodiscard]] std::unique_ptr<Files> OtherFiles() override { return std::make_unique<PosixFiles>(); }
  [[nodiscard]] std::string Folder() override { return folder_.path(); }
  [[nodiscard]] std::vector<std::string> Names(const std::string& folder) override { return NamesIn(folder); }

  [[nodiscard]] Registry& registry() override {
    if (!registry_) registry_ = MakeRegistry();
    return *registry_;
  }
  [[nodiscard]] std::unique_ptr<Registry> ReopenRegistry() override { return MakeRegistry(); }

  [[nodiscard]] std::unique_ptr<PageFetcher> MakeFetcher(const std::string& proxy,
                                                         const std::string& authorities) override {
    CurlPageFetcher::Options options;
    options.proxy = proxy.empty() ? ProxyChoice::None() : ProxyChoice::Given(proxy);
    options.authorities = authorities;
    return std::make_unique<CurlPageFetcher>(*loop_, std::move(options));
  }
  [[nodiscard]] std::unique_ptr<WebClient> MakeWebClient(const std::string& proxy, const std::string& authorities,
                                                         LookUpName look_up) override {
    CurlWebOptions options;
    options.proxy = proxy.empty() ? ProxyChoice::None() : ProxyChoice::Given(proxy);
    options.authorities = authorities;
    options.look_up = std::move(look_up);
    return MakeCurlWebClient(*loop_, std::move(options));
  }
  void Serve(ServeHandler handler) override {
    auto server = MakePosixLoopbackServer(std::move(handler));
    ASSERT_TRUE(server.ok()) << server.status().message();
    server_ = server.take();
  }
  [[nodiscard]] std::string ServerAddress() override { return "http://127.0.0.1:" + std::to_string(server_->port()); }

  void ForgetPeakMemory() override { std::ofstream("/proc/self/clear_refs") << "5"; }
  [[nodiscard]] std::optional<std::uint64_t> PeakMemory() override {
#ifdef __SANITIZE_ADDRESS__
    return std::nullopt;  // the sanitizer keeps freed memory
#else
    std::ifstream status("/proc/self/status");
    for (std::string line; std::getline(status, line);) {
      if (line.starts_with("VmHWM:")) return std::stoull(line.substr(6)) * 1024;
    }
    return std::nullopt;
#endif
  }

  [[nodiscard]] const CodePage& code_page() override { return code_page_; }
  [[nodiscard]] const TextDecoder& text_decoder() override { return text_decoder_; }
  [[nodiscard]] const Idna& idna() override { return idna_; }
  [[nodiscard]] const Clock& clock() override { return clock_; }
  [[nodiscard]] InterfaceTable& interfaces() override { return interfaces_; }

 private:
  std::unique_ptr<Registry> MakeRegistry() {
    return std::make_unique<FileRegistry>(files_, *loop_, registry_folder_.path() + "/new folder/settings.ini");
  }

  PosixFolder folder_, registry_folder_;
  std::unique_ptr<PosixEventLoop> loop_ = PosixEventLoop::Make().take();
  PosixFiles files_;
  std::unique_ptr<Registry> registry_;
  std::unique_ptr<LoopbackServer> server_;
  Windows1252CodePage code_page_;
  IconvTextDecoder text_decoder_;
  Idn2Idna idna_;
  PosixClock clock_;
  SysInterfaceTable interfaces_;
};

}  // namespace

std::unique_ptr<TestPlatform> MakeTestPlatform() { return std::make_unique<PosixTestPlatform>(); }

}  // namespace quenlar
