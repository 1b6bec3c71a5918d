// Signals, other programs, interfaces and descriptors as POSIX systems have them.
#include <cstdlib>
#include <fstream>
#include <sstream>
#include <string>

#include <gtest/gtest.h>
#include <signal.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include "fetch_log.h"
#include "hostile_server.h"
#include "platform/posix/curl_page_fetcher.h"
#include "platform/posix/event_loop.h"
#include "platform/posix/shell.h"
#include "platform/posix/signal_watcher.h"
#include "platform/posix/sys_interface_table.h"
#include "platform_under_test.h"
#include "posix_folder.h"

namespace quenlar {
namespace {

using std::chrono::milliseconds;

TEST(SignalWatcher, ASignalIsDeliveredInsideAPumpAndWakesASleeper) {
  for (const int number : {SIGINT, SIGTERM, SIGHUP}) {
    const auto loop = PosixEventLoop::Make().take();
    int seen = 0;
    SignalWatcher watcher(*loop, [&](int signal) { seen = signal; });
    raise(number);
    EXPECT_EQ(seen, 0);
    EXPECT_TRUE(PumpUntil(*loop, [&] { return seen != 0; }));
    EXPECT_EQ(seen, number);
  }
}

// How a child ends that runs `action`.
template <typename Action>
int EndOf(Action action) {
  const pid_t child = fork();
  if (child == 0) {
    action();
    _exit(0);
  }
  int status = 0;
  waitpid(child, &status, 0);
  return status;
}

TEST(SignalWatcher, ASecondSignalEndsTheProcessAtOnce) {
  for (const auto& [first, second] :
       {std::pair(SIGINT, SIGINT), std::pair(SIGINT, SIGTERM), std::pair(SIGHUP, SIGINT)}) {
    const int status = EndOf([first = first, second = second] {
      const auto loop = PosixEventLoop::Make().take();
      SignalWatcher watcher(*loop, [](int) {});
      raise(first);
      raise(second);
    });
    EXPECT_TRUE(WIFSIGNALED(status));
    EXPECT_EQ(WTERMSIG(status), second);
  }
}

TEST(SignalWatcher, ItsDeathGivesTheSignalsTheirOldMeaningBack) {
  const int status = EndOf([] {
    const auto loop = PosixEventLoop::Make().take();
    {
      SignalWatcher watcher(*loop, [](int) {});
    }
    raise(SIGTERM);
  });
  EXPECT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == SIGTERM);
}

TEST(SignalWatcher, OneThatStaysLetsAFinishedProcessEndInPeace) {
  const auto end_after = [](int signals) {
    return EndOf([signals] {
      const auto loop = PosixEventLoop::Make().take();
      {
        SignalWatcher watcher(*loop, [](int) {});
        watcher.StayToTheEnd();
      }
      for (int i = 0; i < signals; ++i) raise(SIGTERM);
    });
  };
  const int one = end_after(1);
  EXPECT_TRUE(WIFEXITED(one) && WEXITSTATUS(one) == 0);
  const int two = end_after(2);
  EXPECT_TRUE(WIFSIGNALED(two) && WTERMSIG(two) == SIGTERM);
}

TEST(SignalWatcher, AHangUpThatWasIgnoredStaysIgnored) {
  const int status = EndOf([] {
    signal(SIGHUP, SIG_IGN);
    const auto loop = PosixEventLoop::Make().take();
    bool seen = false;
    SignalWatcher watcher(*loop, [&](int) { seen = true; });
    raise(SIGHUP);
    loop->Wait(milliseconds(10));
    _exit(seen ? 1 : 0);
  });
  EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0);
}

TEST(SignalWatcher, ABrokenPipeIsNoDeath) {
  const int status = EndOf([] {
    IgnoreBrokenPipes();
    int ends[2];
    if (pipe(ends) != 0) _exit(2);
    close(ends[0]);
    _exit(write(ends[1], "x", 1) < 0 ? 0 : 1);
  });
  EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0);
}

// Programs are looked for in this folder alone, for as long as this object lives.
class PathHolds {
 public:
  explicit PathHolds(const std::string& folder) : before_(std::getenv("PATH") == nullptr ? "" : std::getenv("PATH")) {
    setenv("PATH", folder.c_str(), 1);
  }
  ~PathHolds() { setenv("PATH", before_.c_str(), 1); }
  PathHolds(const PathHolds&) = delete;
  PathHolds& operator=(const PathHolds&) = delete;

 private:
  const std::string before_;
};

class PosixShellTest : public testing::Test {
 protected:
  PosixShellTest() {
    // Writes its arguments to a file, one a line, and moves that into place when it is whole.
    std::ofstream(script_) << "#!/bin/sh\nfor a in \"$@\"; do echo \"$a\"; done > '" << folder_.path()
                           << "/part'\n/bin/mv '" << folder_.path() << "/part' '" << folder_.path() << "/arguments'\n";
    chmod(script_.c_str(), 0755);
  }
  std::string Arguments() {
    const std::string path = folder_.path() + "/arguments";
    for (int i = 0; i < 3000 && access(path.c_str(), F_OK) != 0; ++i) usleep(10'000);
    std::ostringstream text;
    text << std::ifstream(path).rdbuf();
    unlink(path.c_str());
    return text.str();
  }

  PosixFolder folder_;
  const std::string script_ = folder_.path() + "/script";
  PosixShell shell_;
};

TEST_F(PosixShellTest, ParametersAreOneArgumentWhateverTheyHold) {
  const PathHolds opener(folder_.path());
  rename(script_.c_str(), (folder_.path() + "/xdg-open").c_str());
  for (const char* text : {"http://a.example/", "two words", "$(touch x); `id` && $HOME", "\"quoted\" 'text'", "*"}) {
    shell_.OpenBrowser(text);
    EXPECT_EQ(Arguments(), std::string(text) + "\n");
    EXPECT_TRUE(shell_.Edit(text).ok());
    EXPECT_EQ(Arguments(), std::string(text) + "\n");
  }
}

TEST_F(PosixShellTest, ACommandLineIsAProgramAndTheRest) {
  ASSERT_TRUE(shell_.Start(script_ + " /a path/with blanks.rpt").ok());
  EXPECT_EQ(Arguments(), "/a path/with blanks.rpt\n");
  ASSERT_TRUE(shell_.Start("\"" + script_ + "\" x; y").ok());
  EXPECT_EQ(Arguments(), "x; y\n");
  ASSERT_TRUE(shell_.Start("  " + script_ + "  ").ok());
  EXPECT_EQ(Arguments(), "");
}

TEST_F(PosixShellTest, WhatCannotBeStartedIsToldOrPassedOver) {
  EXPECT_EQ(shell_.Start("/no/such/program x").kind(), StatusKind::kNotFound);
  for (const char* line : {"", " ", "\"", "\"\"", "\" x"}) {
    EXPECT_FALSE(shell_.Start(line).ok()) << line;
  }
}

TEST_F(PosixShellTest, WithoutADesktopNothingOpens) {
  const PathHolds nothing(folder_.path());
  shell_.OpenBrowser("http://a.example/");
  EXPECT_EQ(shell_.Edit("/a/file").kind(), StatusKind::kNotFound);
}

TEST(SysInterfaceTable, TheLoopbackInterfaceIsThereAndCounts) {
  SysInterfaceTable table;
  std::vector<InterfaceRow> rows;
  ASSERT_EQ(table.Read(rows), TableOutcome::kRead);
  const auto loopback = std::find_if(rows.begin(), rows.end(), [](const auto& row) { return row.type == 24; });
  ASSERT_NE(loopback, rows.end());
  EXPECT_EQ(loopback->name, "lo");
  EXPECT_GT(loopback->mtu, 0u);
  EXPECT_EQ(loopback->in_octets, loopback->out_octets);
}

// The environment is the process's, so these run in children.
class Environment : public HostileServer {
 protected:
  // What a download gives in a process with these variables.
  template <typename Prepare>
  std::string FetchWith(const std::string& address, Prepare prepare) {
    int ends[2];
    EXPECT_EQ(pipe(ends), 0);
    const int status = EndOf([&] {
      prepare();
      const auto loop = PosixEventLoop::Make().take();
      CurlPageFetcher fetcher(*loop, {});
      FetchLog log;
      fetcher.SetListener(&log);
      fetcher.Start(address, "k");
      if (!PumpUntil(*loop, [&] { return log.Finished() == 1; })) _exit(1);
      const std::string line = log.Count("0 k") == 1 ? "failed" : log.bodies["k"].substr(0, log.bodies["k"].find("\r"));
      [[maybe_unused]] const ssize_t size = write(ends[1], line.data(), line.size());
    });
    close(ends[1]);
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0);
    std::string answer(1000, '\0');
    const ssize_t size = read(ends[0], answer.data(), answer.size());
    close(ends[0]);
    return answer.substr(0, size < 0 ? 0 : static_cast<std::size_t>(size));
  }
};

TEST_F(Environment, NamesTheProxy) {
  EXPECT_EQ(FetchWith("http://invented.example/echo", [&] { setenv("http_proxy", ("http://" + server_).c_str(), 1); }),
            "GET http://invented.example/echo HTTP/1.1");
}

TEST_F(Environment, NamesTheHostsThatNeedNone) {
  EXPECT_EQ(FetchWith("http://" + server_ + "/echo",
                      [&] {
                        setenv("http_proxy", "http://127.0.0.1:1", 1);
                        setenv("no_proxy", "127.0.0.1,other.example", 1);
                      }),
            "GET /echo HTTP/1.1");
}

TEST_F(Environment, ADeadProxyOfTheEnvironmentIsNotGoneAround) {
  EXPECT_EQ(FetchWith("http://" + server_ + "/echo",
                      [&] {
                        unsetenv("no_proxy");
                        setenv("http_proxy", "http://127.0.0.1:1", 1);
                      }),
            "failed");
}

TEST_F(Environment, TheLocaleIsOfNoInfluence) {
  EXPECT_EQ(FetchWith("http://b\xC3\xBC"
                      "cher.example/echo/\xC3\xBC",
                      [&] {
                        setenv("http_proxy", ("http://" + server_).c_str(), 1);
                        setenv("LC_ALL", "tr_TR.ISO-8859-9", 1);
                        unsetenv("HOME");
                      }),
            "GET http://xn--bcher-kva.example/echo/%C3%BC HTTP/1.1");
}

#ifndef __SANITIZE_ADDRESS__  // which needs all of the address space for itself
TEST_F(HostileServer, APageThatMemoryDoesNotHoldFailsAndTheNextOneArrives) {
  const int status = EndOf([this] {
    ExpectOrdinaryService();
    std::ifstream sizes("/proc/self/statm");
    rlim_t pages = 0;
    sizes >> pages;
    const rlim_t held = pages * static_cast<rlim_t>(sysconf(_SC_PAGESIZE));
    const rlimit little{.rlim_cur = held + (20 << 20), .rlim_max = RLIM_INFINITY};
    setrlimit(RLIMIT_AS, &little);
    for (const char* path : {"/endless", "/chunks/endless", "/gzip/bomb"}) {
      ExpectFailure(path);
      ExpectOrdinaryService();
    }
    _exit(HasFailure() ? 1 : 0);
  });
  EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << status;
}
#endif

TEST_F(HostileServer, ADownloadFailsWhileTheProcessIsOutOfDescriptorsAndWorksAgainLater) {
  const int status = EndOf([this] {
    ExpectOrdinaryService();
    UseFetcher(platform_->MakeFetcher("", ""));  // has no connection yet
    rlimit limit{};
    getrlimit(RLIMIT_NOFILE, &limit);
    const rlimit none{.rlim_cur = 0, .rlim_max = limit.rlim_max};
    setrlimit(RLIMIT_NOFILE, &none);
    ExpectFailure("/page");
    setrlimit(RLIMIT_NOFILE, &limit);
    ExpectOrdinaryService();
    _exit(HasFailure() ? 1 : 0);
  });
  EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0);
}

}  // namespace
}  // namespace quenlar
