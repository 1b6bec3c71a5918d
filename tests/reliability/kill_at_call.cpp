// Starts a program and kills it as it enters its N-th system call, counted over all of its threads.
// usage: kill_at_call N FILE PROGRAM [ARGUMENT ...]
// FILE gets the number of system calls that were entered. The exit status is 137 after the kill, else the program's
// own.
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <set>

#include <sys/ptrace.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

constexpr int kSystemCall = SIGTRAP | 0x80;  // what PTRACE_O_TRACESYSGOOD makes of the signal
constexpr long kOptions =
    PTRACE_O_EXITKILL | PTRACE_O_TRACESYSGOOD | PTRACE_O_TRACECLONE | PTRACE_O_TRACEFORK | PTRACE_O_TRACEVFORK;

int Fail(const char* what) {
  std::perror(what);
  return 2;
}

// Lets a thread go on up to its next system call. A thread that a kill has ended meanwhile is told of by the next wait.
void GoOn(pid_t thread, int signal) { ptrace(PTRACE_SYSCALL, thread, nullptr, signal); }

// The signal that a stopped thread is to get: none where the stop was made by the tracing itself.
int SignalOf(int status) {
  const int signal = WSTOPSIG(status);
  return signal == SIGTRAP || signal == SIGSTOP ? 0 : signal;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc < 4) return std::fprintf(stderr, "usage: kill_at_call N FILE PROGRAM [ARGUMENT ...]\n"), 2;
  const long wanted = std::atol(argv[1]);
  const pid_t program = fork();
  if (program < 0) return Fail("fork");
  if (program == 0) {
    ptrace(PTRACE_TRACEME, 0, nullptr, nullptr);
    execv(argv[3], argv + 3);
    _exit(Fail(argv[3]));
  }
  int status = 0;
  if (waitpid(program, &status, 0) != program || !WIFSTOPPED(status)) return Fail("start");
  if (ptrace(PTRACE_SETOPTIONS, program, nullptr, kOptions) != 0) return Fail("ptrace");
  GoOn(program, 0);

  std::set<pid_t> inside;  // the threads that are in a system call
  long calls = 0;
  int end = 2;
  for (;;) {
    const pid_t thread = waitpid(-1, &status, __WALL);
    if (thread < 0) break;  // all have ended
    if (!WIFSTOPPED(status)) {
      inside.erase(thread);
      if (thread == program) end = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
      continue;
    }
    const bool enters = WSTOPSIG(status) == kSystemCall && inside.insert(thread).second;
    if (WSTOPSIG(status) == kSystemCall && !enters) inside.erase(thread);
    if (enters && ++calls == wanted) {
      kill(program, SIGKILL);
      continue;
    }
    GoOn(thread, WSTOPSIG(status) == kSystemCall ? 0 : SignalOf(status));
  }
  std::FILE* const file = std::fopen(argv[2], "w");
  if (file == nullptr) return Fail(argv[2]);
  std::fprintf(file, "%ld\n", calls);
  std::fclose(file);
  return end;
}
