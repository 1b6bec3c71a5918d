#include "platform/posix/shell.h"

#include <algorithm>

#include <fcntl.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include "base/ascii.h"
#include "platform/posix/errors.h"

extern char** environ;

namespace quenlar {
namespace {

constexpr const char* kOpener = "xdg-open";

}  // namespace

PosixShell::~PosixShell() { Reap(); }

void PosixShell::OpenBrowser(const std::string& address) {
  Run({kOpener, address}).Ignore("the interface has no way to tell, and its users do not ask");
}

Status PosixShell::Edit(const std::string& path) { return Run({kOpener, path}); }

Status PosixShell::Start(const std::string& command_line) {
  const std::string_view line = TrimBlanks(command_line);
  const bool quoted = line.starts_with('"');
  const std::size_t end = std::min(line.find(quoted ? '"' : ' ', 1), line.size());
  std::vector<std::string> arguments = {std::string(line.substr(quoted ? 1 : 0, end - (quoted ? 1 : 0)))};
  const std::string_view rest = TrimBlanks(line.substr(std::min(end + 1, line.size())));
  if (!rest.empty()) arguments.emplace_back(rest);
  return Run(arguments);
}

void PosixShell::CopyToClipboard(const std::string&) {}

Status PosixShell::Run(const std::vector<std::string>& arguments) {
  Reap();
  if (arguments.front().empty()) return {StatusKind::kNotFound, "no program to start"};
  for (const std::string& argument : arguments) {
    if (argument.find('\0') != std::string::npos) return {StatusKind::kFailed, arguments.front() + ": bad argument"};
  }
  std::vector<char*> pointers;
  for (const std::string& argument : arguments) pointers.push_back(const_cast<char*>(argument.c_str()));
  pointers.push_back(nullptr);

  posix_spawn_file_actions_t files;
  posix_spawn_file_actions_init(&files);
  posix_spawn_file_actions_addopen(&files, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
  posix_spawn_file_actions_addopen(&files, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
  posix_spawnattr_t attributes;
  posix_spawnattr_init(&attributes);
  sigset_t restored;  // ignored signals would stay ignored in the new program
  sigemptyset(&restored);
  sigaddset(&restored, SIGPIPE);
  posix_spawnattr_setsigdefault(&attributes, &restored);
  posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSID | POSIX_SPAWN_SETSIGDEF);
  pid_t child = 0;
  const int error = posix_spawnp(&child, pointers[0], &files, &attributes, pointers.data(), environ);
  posix_spawnattr_destroy(&attributes);
  posix_spawn_file_actions_destroy(&files);
  if (error != 0) return StatusOfErrno(error, arguments.front());
  children_.push_back(child);
  return Status::Ok();
}

void PosixShell::Reap() {
  std::erase_if(children_, [](int child) { return waitpid(child, nullptr, WNOHANG) != 0; });
}

}  // namespace quenlar
