// The command line on Windows.
#include <memory>

#include "cli/command_line.h"
#include "cli/console_boxes.h"
#include "platform/win32/clock.h"
#include "platform/win32/code_page.h"
#include "platform/win32/console.h"
#include "platform/win32/console_stop.h"
#include "platform/win32/event_loop.h"
#include "platform/win32/files.h"
#include "platform/win32/idna.h"
#include "platform/win32/interface_table.h"
#include "platform/win32/process.h"
#include "platform/win32/registry.h"
#include "platform/win32/shell.h"
#include "platform/win32/text_decoder.h"
#include "platform/win32/winhttp_page_fetcher.h"
#include "platform/win32/winhttp_web_client.h"
#include "platform/win32/winsock_loopback_server.h"
#include "state/settings.h"

namespace quenlar {
namespace {

class Win32System final : public System {
 public:
  Console& console() override { return console_; }
  std::optional<std::string> Environment(const char* name) const override { return win32::EnvironmentValue(name); }
  std::string DefaultHome() const override { return win32::ProgramFolder(); }
  char separator() const override { return '\\'; }

  // Settings and project list are the registry's, wherever the program folder lies.
  Result<Platform> Open(const PlatformChoice& choice) override {
    if (!registry_) {
      registry_ = std::make_unique<Win32Registry>(code_page_, Win32Registry::WritableRoot(kProjectKey));
      if (!choice.proxy.empty()) proxy_ = ProxyChoice::Given(choice.proxy);
      WinHttpOptions options;
      options.proxy = proxy_;
      fetcher_ = std::make_unique<WinHttpPageFetcher>(loop_, options);
    }
    return Platform{loop_,  *fetcher_, *registry_, interfaces_, files_,       code_page_,
                    clock_, shell_,    boxes_,     idna_,       text_decoder_};
  }

  WebClient& web_client() override {
    if (!web_client_) web_client_ = MakeWinHttpWebClient(loop_, proxy_);
    return *web_client_;
  }

  void OnStop(std::function<void()> stop) override {
    stop_ = std::make_unique<Win32ConsoleStop>(loop_, std::move(stop));
  }

  Result<std::unique_ptr<LoopbackServer>> Serve(ServeHandler handler) override {
    return MakeWinsockLoopbackServer(std::move(handler));
  }

 private:
  Win32Console console_;
  ConsoleBoxes boxes_{console_};
  Win32EventLoop loop_;
  Win32CodePage code_page_;
  Win32Idna idna_;
  Win32TextDecoder text_decoder_;
  Win32Files files_;
  Win32Clock clock_;
  Win32Shell shell_;
  Win32InterfaceTable interfaces_;
  std::unique_ptr<Win32Registry> registry_;
  ProxyChoice proxy_;
  std::unique_ptr<WinHttpPageFetcher> fetcher_;
  std::unique_ptr<WebClient> web_client_;
  std::unique_ptr<Win32ConsoleStop> stop_;
};

}  // namespace
}  // namespace quenlar

int main() {
  quenlar::Win32System system;
  return quenlar::RunCommandLine(system, quenlar::win32::Arguments());
}
