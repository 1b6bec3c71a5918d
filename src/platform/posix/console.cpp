#include "platform/posix/console.h"

#include <cerrno>

#include <fcntl.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <unistd.h>

namespace quenlar {
namespace {

// Waits also when another process that shares the descriptor has made it non-blocking.
bool WaitFor(int fd, short events) {
  pollfd one{fd, events, 0};
  int ready;
  while ((ready = poll(&one, 1, -1)) < 0 && errno == EINTR) {
  }
  return ready > 0 && (one.revents & POLLNVAL) == 0;
}

bool WriteAll(int fd, std::string_view bytes) {
  while (!bytes.empty()) {
    const ssize_t written = write(fd, bytes.data(), bytes.size());
    if (written > 0) {
      bytes.remove_prefix(static_cast<std::size_t>(written));
    } else if (written < 0 && (errno == EAGAIN || errno == EWOULDBLOCK)) {
      if (!WaitFor(fd, POLLOUT)) return false;
    } else if (written == 0 || errno != EINTR) {
      return false;
    }
  }
  return true;
}

}  // namespace

PosixConsole::PosixConsole() {
  // The system gives out the lowest free descriptor first. One that is opened only for reading cannot be written to.
  for (int fd = open("/dev/null", O_RDONLY); fd >= 0; fd = open("/dev/null", O_RDONLY)) {
    if (fd <= STDERR_FILENO) continue;
    close(fd);
    break;
  }
}

bool PosixConsole::Write(std::string_view bytes) {
  if (!gone_ && !WriteAll(STDOUT_FILENO, bytes)) {
    gone_ = true;
    full_ = errno == ENOSPC || errno == EDQUOT || errno == EFBIG;
  }
  return !gone_;
}

void PosixConsole::WriteError(std::string_view bytes) { (void)WriteAll(STDERR_FILENO, bytes); }

std::size_t PosixConsole::Read(char* buffer, std::size_t size) {
  for (;;) {
    const ssize_t got = read(STDIN_FILENO, buffer, size);
    if (got >= 0) return static_cast<std::size_t>(got);
    if (errno == EAGAIN || errno == EWOULDBLOCK) {
      if (!WaitFor(STDIN_FILENO, POLLIN)) return 0;
    } else if (errno != EINTR) {
      return 0;
    }
  }
}

bool PosixConsole::InputIsTerminal() const { return isatty(STDIN_FILENO) == 1; }
bool PosixConsole::OutputIsTerminal() const { return isatty(STDOUT_FILENO) == 1; }
bool PosixConsole::ErrorIsTerminal() const { return isatty(STDERR_FILENO) == 1; }

int PosixConsole::ErrorColumns() const {
  constexpr int kUsual = 80;
  winsize size{};
  return ioctl(STDERR_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0 ? size.ws_col : kUsual;
}

}  // namespace quenlar
