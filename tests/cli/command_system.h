// A computer for whole commands in memory: the fakes of the platform, the three streams, an environment.
#pragma once

#include <map>
#include <string>
#include <utility>
#include <vector>

#include "cli/command_line.h"
#include "cli/console_boxes.h"
#include "fake_console.h"
#include "support/fake_platform.h"

namespace quenlar {

class CommandSystem : public System {
 public:
  FakePlatform fake;
  FakeConsole streams;
  std::map<std::string, std::string> environment;
  std::string default_home = "/user/quenlar";
  PlatformChoice opened;
  std::function<void()> stop;        // what Ctrl-C would call
  std::function<void()> when_ready;  // called once the command can be stopped

  Console& console() override { return streams; }
  std::optional<std::string> Environment(const char* name) const override {
    const auto found = environment.find(name);
    return found == environment.end() ? std::nullopt : std::optional(found->second);
  }
  std::string DefaultHome() const override { return default_home; }
  char separator() const override { return '/'; }
  Result<Platform> Open(const PlatformChoice& choice) override {
    opened = choice;
    const Platform& p = fake.platform;
    return Platform{p.loop,  p.fetcher, p.registry, p.interfaces, p.files,       p.code_page,
                    p.clock, p.shell,   boxes_,     p.idna,       p.text_decoder};
  }
  WebClient& web_client() override { return fake.web_client; }
  void OnStop(std::function<void()> handler) override {
    stop = std::move(handler);
    if (when_ready) when_ready();
  }
  Result<std::unique_ptr<LoopbackServer>> Serve(ServeHandler) override {
    return Status(StatusKind::kFailed, "there is no loopback in memory");
  }

  // Runs one command; what it wrote before is forgotten.
  int Run(std::vector<std::string> arguments) {
    streams.output.clear();
    streams.errors.clear();
    return RunCommandLine(*this, std::move(arguments));
  }
  [[nodiscard]] const std::string& output() const { return streams.output; }
  [[nodiscard]] const std::string& errors() const { return streams.errors; }

  [[nodiscard]] std::string FileText(const std::string& below_home) const {
    return fake.files.Contents(default_home + "/" + below_home).value_or("(no file)");
  }

 private:
  ConsoleBoxes boxes_{streams};
};

}  // namespace quenlar
