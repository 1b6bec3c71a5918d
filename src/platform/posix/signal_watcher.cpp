#include "platform/posix/signal_watcher.h"

#include <array>
#include <atomic>
#include <cassert>
#include <cerrno>
#include <utility>

#include <fcntl.h>
#include <signal.h>
#include <unistd.h>

namespace quenlar {
namespace {

constexpr std::array kSignals = {SIGINT, SIGTERM, SIGHUP};

// A signal handler reaches nothing but static memory.
std::atomic<int> g_pipe = -1;
std::atomic<int> g_signals = 0;
std::array<struct sigaction, kSignals.size()> g_before;

void OnSignal(int signal) {
  if (g_signals.fetch_add(1) > 0) {
    ::signal(signal, SIG_DFL);
    raise(signal);
    return;
  }
  const int error = errno;
  const auto number = static_cast<unsigned char>(signal);
  [[maybe_unused]] const ssize_t written = write(g_pipe, &number, 1);
  errno = error;
}

}  // namespace

SignalWatcher::SignalWatcher(PosixEventLoop& loop, std::function<void(int signal)> on_signal)
    : loop_(loop), on_signal_(std::move(on_signal)), pipe_{-1, -1} {
  assert(g_pipe < 0);
  if (pipe2(pipe_, O_CLOEXEC | O_NONBLOCK) != 0) return;  // out of descriptors: the signals keep their old meaning
  loop_.AddSource(*this);
  loop_.Watch(pipe_[0], true, false, *this);
  g_signals = 0;
  g_pipe = pipe_[1];
  struct sigaction action {};
  action.sa_handler = &OnSignal;
  action.sa_flags = SA_RESTART;
  for (std::size_t i = 0; i < kSignals.size(); ++i) {
    sigaction(kSignals[i], nullptr, &g_before[i]);
    const bool stays_ignored = kSignals[i] == SIGHUP && g_before[i].sa_handler == SIG_IGN;
    if (!stays_ignored) sigaction(kSignals[i], &action, nullptr);
  }
}

SignalWatcher::~SignalWatcher() {
  if (pipe_[0] < 0) return;
  if (!stays_) {
    for (std::size_t i = 0; i < kSignals.size(); ++i) sigaction(kSignals[i], &g_before[i], nullptr);
  }
  g_pipe = -1;  // a handler that stays writes to no one
  loop_.RemoveSource(*this);
  close(pipe_[0]);
  close(pipe_[1]);
}

void SignalWatcher::OnReady(int fd, Readiness) {
  unsigned char number = 0;
  if (read(fd, &number, 1) != 1) return;
  loop_.Post([handler = on_signal_, signal = static_cast<int>(number)] { handler(signal); });
}

void IgnoreBrokenPipes() { ::signal(SIGPIPE, SIG_IGN); }

}  // namespace quenlar
