// What the command line needs of the system that it runs on, beside the platform seam. Each main function implements
// it for its system, tests implement it in memory.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "base/status.h"
#include "platform/console.h"
#include "platform/loopback_server.h"
#include "platform/platform.h"

namespace quenlar {

// Where the program lives and how it reaches the network; all of it is known once the options have been read.
struct PlatformChoice {
  std::string home;         // the program folder: an absolute path without a trailing separator; "" where there is none
  bool home_given = false;  // by --home or QUENLAR_HOME: settings and project list lie in it too
  std::string proxy;        // "http://host:port", or "" for the system's own proxy settings
};

class System {
 public:
  virtual ~System() = default;

  [[nodiscard]] virtual Console& console() = 0;
  // The value of an environment variable; empty when it is not set.
  [[nodiscard]] virtual std::optional<std::string> Environment(const char* name) const = 0;
  // The program folder of somebody who has named none.
  [[nodiscard]] virtual std::string DefaultHome() const = 0;
  // The separator between folders.
  [[nodiscard]] virtual char separator() const = 0;

  // Builds the platform; a second call gives the same one. The references live as long as the system.
  [[nodiscard]] virtual Result<Platform> Open(const PlatformChoice& choice) = 0;

  // From now on the user's wish to stop (Ctrl-C and its relatives) calls `stop` inside a pump; a second wish ends the
  // process at once. Before this call the system's own habits hold. Called once, after Open.
  virtual void OnStop(std::function<void()> stop) = 0;

  // Serves `handler` on a free loopback port.
  [[nodiscard]] virtual Result<std::unique_ptr<LoopbackServer>> Serve(ServeHandler handler) = 0;
};

}  // namespace quenlar
