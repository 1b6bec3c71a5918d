// What the command line needs of its system besides the platform seam. Each main function implements it for its system,
// and tests implement it in memory.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "base/status.h"
#include "platform/console.h"
#include "platform/loopback_server.h"
#include "platform/platform.h"
#include "platform/web_client.h"

namespace quenlar {

// Where the program keeps its files and how it reaches the network. Known when the options have been read.
struct PlatformChoice {
  std::string home;         // the program folder: absolute, without a separator at its end; "" when there is none
  bool home_given = false;  // by --home or QUENLAR_HOME: settings and project list lie in it too
  std::string proxy;        // "http://host:port", or "" for the system's own proxy settings
  // A file of certificates (PEM) that the crawler's client trusts instead of the system's; "" for those. It is read
  // when the client is built. Windows knows the system's alone.
  std::string authorities;
};

// The system as a command sees it. One object lives for the whole run of the program, and everything that it hands out
// lives as long.
class System {
 public:
  virtual ~System() = default;

  [[nodiscard]] virtual Console& console() = 0;
  // The value of an environment variable; empty when it is not set.
  [[nodiscard]] virtual std::optional<std::string> Environment(const char* name) const = 0;
  // The program folder when the user has named none.
  [[nodiscard]] virtual std::string DefaultHome() const = 0;
  // The separator between folders.
  [[nodiscard]] virtual char separator() const = 0;

  // Builds the platform. A second call returns the same one. The references are valid as long as the system lives.
  [[nodiscard]] virtual Result<Platform> Open(const PlatformChoice& choice) = 0;

  // The crawler's client, on the platform's loop and through the proxy that Open was given. It is built by the first
  // call, which comes after Open.
  [[nodiscard]] virtual WebClient& web_client() = 0;

  // From now on the user's wish to stop, such as Ctrl-C, calls `stop` inside a pump. A second wish ends the process at
  // once. Before this call the first one does. Called once, after Open.
  virtual void OnStop(std::function<void()> stop) = 0;

  // Serves `handler` on a free loopback port.
  [[nodiscard]] virtual Result<std::unique_ptr<LoopbackServer>> Serve(ServeHandler handler) = 0;
};

}  // namespace quenlar
