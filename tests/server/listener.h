// A listening socket on a free port of 127.0.0.1.
#pragma once

namespace quenlar::hostile {

struct Listener {
  int socket = -1;
  int port = 0;
};

// Ends the process with a message when there is no port left.
[[nodiscard]] Listener Listen();
// Waits for the next connection.
[[nodiscard]] int Accept(const Listener& listener);

}  // namespace quenlar::hostile
