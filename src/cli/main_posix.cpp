// The command line on POSIX systems.
#include <cstdlib>
#include <memory>

#include "cli/command_line.h"
#include "cli/console_boxes.h"
#include "platform/posix/clock.h"
#include "platform/posix/console.h"
#include "platform/posix/curl_page_fetcher.h"
#include "platform/posix/curl_web_client.h"
#include "platform/posix/event_loop.h"
#include "platform/posix/file_registry.h"
#include "platform/posix/files.h"
#include "platform/posix/iconv_text_decoder.h"
#include "platform/posix/idn2_idna.h"
#include "platform/posix/loopback_server.h"
#include "platform/posix/shell.h"
#include "platform/posix/signal_watcher.h"
#include "platform/posix/sys_interface_table.h"
#include "platform/posix/user_folders.h"
#include "platform/posix/windows1252_code_page.h"

namespace quenlar {
namespace {

class PosixSystem final : public System {
 public:
  // A signal that comes while the process winds up must not turn a finished command into a killed one.
  ~PosixSystem() override {
    if (signals_) signals_->StayToTheEnd();
  }

  Console& console() override { return console_; }
  std::optional<std::string> Environment(const char* name) const override {
    const char* const value = std::getenv(name);
    return value == nullptr ? std::nullopt : std::optional<std::string>(value);
  }
  std::string DefaultHome() const override {
    const std::string folder = UserDataFolder();
    return folder.empty() ? "" : folder + "/quenlar";
  }
  char separator() const override { return '/'; }

  Result<Platform> Open(const PlatformChoice& choice) override {
    if (!loop_) {
      auto loop = PosixEventLoop::Make();
      if (!loop.ok()) return loop.status();
      loop_ = loop.take();
      const std::string config = choice.home_given ? "" : UserConfigFolder();
      const std::string settings = config.empty() ? choice.home : config + "/quenlar";
      registry_ = std::make_unique<FileRegistry>(files_, *loop_, settings + "/quenlar.conf");
      authorities_ = choice.authorities;
      if (!choice.proxy.empty()) proxy_ = ProxyChoice::Given(choice.proxy);
      CurlPageFetcher::Options options;
      options.proxy = proxy_;
      fetcher_ = std::make_unique<CurlPageFetcher>(*loop_, options);
    }
    return Platform{*loop_, *fetcher_, *registry_, interfaces_, files_,       code_page_,
                    clock_, shell_,    boxes_,     idna_,       text_decoder_};
  }

  WebClient& web_client() override {
    if (!web_client_) {
      // The variable by which OpenSSL's programs are told whom to trust.
      if (authorities_.empty()) authorities_ = Environment("SSL_CERT_FILE").value_or("");
      web_client_ = MakeCurlWebClient(*loop_, {.proxy = proxy_, .authorities = authorities_});
    }
    return *web_client_;
  }

  void OnStop(std::function<void()> stop) override {
    signals_ = std::make_unique<SignalWatcher>(*loop_, [stop = std::move(stop)](int) { stop(); });
  }

  Result<std::unique_ptr<LoopbackServer>> Serve(ServeHandler handler) override {
    return MakePosixLoopbackServer(std::move(handler));
  }

 private:
  PosixConsole console_;
  ConsoleBoxes boxes_{console_};
  PosixFiles files_;
  PosixClock clock_;
  PosixShell shell_;
  Windows1252CodePage code_page_;
  Idn2Idna idna_;
  IconvTextDecoder text_decoder_;
  SysInterfaceTable interfaces_;
  // In the order in which they need each other.
  std::unique_ptr<PosixEventLoop> loop_;
  std::unique_ptr<FileRegistry> registry_;
  ProxyChoice proxy_;
  std::string authorities_;
  std::unique_ptr<CurlPageFetcher> fetcher_;
  std::unique_ptr<WebClient> web_client_;
  std::unique_ptr<SignalWatcher> signals_;
};

}  // namespace
}  // namespace quenlar

int main(int count, char** values) {
  quenlar::IgnoreBrokenPipes();
  quenlar::PosixSystem system;
  return quenlar::RunCommandLine(system, {values + 1, values + (count > 0 ? count : 1)});
}
