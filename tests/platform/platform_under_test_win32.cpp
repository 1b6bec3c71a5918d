// The Windows implementations under test.
#include <utility>

#include "platform/win32/clock.h"
#include "platform/win32/code_page.h"
#include "platform/win32/event_loop.h"
#include "platform/win32/files.h"
#include "platform/win32/idna.h"
#include "platform/win32/interface_table.h"
#include "platform/win32/registry.h"
#include "platform/win32/text_decoder.h"
#include "platform/win32/wide.h"
#include "platform/win32/windows_api.h"
#include "platform/win32/winhttp_page_fetcher.h"
#include "platform/win32/winhttp_web_client.h"
#include "platform/win32/winsock_loopback_server.h"
#include "platform_under_test.h"
#include "scratch_win32.h"

namespace quenlar {
namespace {

class Win32TestPlatform : public TestPlatform {
 public:
  [[nodiscard]] EventLoop& loop() override { return loop_; }
  [[nodiscard]] Files& files() override { return files_; }
  [[nodiscard]] std::unique_ptr<Files> OtherFiles() override { return std::make_unique<Win32Files>(); }
  [[nodiscard]] std::string Folder() override { return folder_.path(); }
  [[nodiscard]] std::vector<std::string> Names(const std::string& folder) override { return NamesIn(folder); }

  [[nodiscard]] Registry& registry() override { return registry_; }
  [[nodiscard]] std::unique_ptr<Registry> ReopenRegistry() override {
    return std::make_unique<Win32Registry>(code_page_, Win32Registry::Root::kMachine);
  }

  [[nodiscard]] std::unique_ptr<PageFetcher> MakeFetcher(const std::string& proxy,
                                                         const std::string& authorities) override {
    if (!authorities.empty()) authorities_ = std::make_unique<TrustedAuthority>(authorities);
    WinHttpOptions options;
    options.proxy = proxy.empty() ? ProxyChoice{} : ProxyChoice::Given(proxy);
    return std::make_unique<WinHttpPageFetcher>(loop_, options);
  }
  [[nodiscard]] std::unique_ptr<WebClient> MakeWebClient(const std::string& proxy, const std::string& authorities,
                                                         LookUpName look_up) override {
    if (!authorities.empty()) authorities_ = std::make_unique<TrustedAuthority>(authorities);
    return MakeWinHttpWebClient(loop_, proxy.empty() ? ProxyChoice::None() : ProxyChoice::Given(proxy),
                                std::move(look_up));
  }
  [[nodiscard]] bool HttpIsStrict() const override {
    return GetProcAddress(GetModuleHandleW(L"ntdll.dll"), "wine_get_version") == nullptr;
  }
  void Serve(ServeHandler handler) override {
    auto server = MakeWinsockLoopbackServer(std::move(handler));
    ASSERT_TRUE(server.ok()) << server.status().message();
    server_ = server.take();
  }
  [[nodiscard]] std::string ServerAddress() override { return "http://127.0.0.1:" + std::to_string(server_->port()); }

  [[nodiscard]] const CodePage& code_page() override { return code_page_; }
  [[nodiscard]] const TextDecoder& text_decoder() override { return text_decoder_; }
  [[nodiscard]] const Idna& idna() override { return idna_; }
  [[nodiscard]] const Clock& clock() override { return clock_; }
  [[nodiscard]] InterfaceTable& interfaces() override { return interfaces_; }

 private:
  ScratchFolder folder_;
  ScratchRegistry scratch_registry_;
  std::unique_ptr<TrustedAuthority> authorities_;
  Win32EventLoop loop_;
  Win32Files files_;
  Win32CodePage code_page_;
  Win32TextDecoder text_decoder_;
  Win32Idna idna_;
  Win32Registry registry_{code_page_, Win32Registry::Root::kMachine};
  std::unique_ptr<LoopbackServer> server_;
  Win32Clock clock_;
  Win32InterfaceTable interfaces_;
};

}  // namespace

std::unique_ptr<TestPlatform> MakeTestPlatform() { return std::make_unique<Win32TestPlatform>(); }

}  // namespace quenlar
