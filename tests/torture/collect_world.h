// A small web, and the commands that collect from it, erase and harvest, with everything they store in memory.
#pragma once

#include <algorithm>
#include <cstdint>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "base/ascii.h"
#include "command_system.h"
#include "in_memory_databases.h"
#include "torture_world.h"

namespace quenlar {

inline constexpr int kWebPages = 5;

// Two hosts of one site with rules, redirects, pages that are not there, and a page that is not one.
inline void ServeWeb(ScriptedWebClient& client) {
  const auto page = [&client](const std::string& url, ScriptedWebAnswer answer) {
    answer.ip = "1.0.0.1";
    client.Serve(url, std::move(answer));
  };
  std::string start =
      "<title>Start</title><a href=/gone>gone</a><a href=/moved>moved</a><a href=/picture>picture</a>"
      "<a href=https://shop.firma.de/>shop</a><a href=https://elsewhere.de/>elsewhere</a>";
  for (int i = 0; i < kWebPages; ++i) {
    const std::string number = std::to_string(i);
    start += "<a href=/" + number + ">page</a>";
    page("https://www.firma.de/" + number,
         {.body = "<title>Ask p" + number + "@firma.de</title>all@firma.de, p" + number + "@firma.de <a href=mailto:m" +
                  number + "@firma.de>m</a>"});
  }
  page("https://www.firma.de/", {.body = start});
  page("https://www.firma.de/moved", WebRedirect("/2"));
  page("https://www.firma.de/picture", {.fields = {{"Content-Type", "image/png"}}, .body = "PNG"});
  page("https://shop.firma.de/robots.txt",
       {.fields = {{"Content-Type", "text/plain"}}, .body = "User-agent: *\nDisallow: /forbidden\n"});
  page("https://shop.firma.de/", {.body = "shop@firma.de <a href=/forbidden>x</a><a href=/more>y</a>"});
  page("https://shop.firma.de/more", {.body = "more@firma.de"});
  client.ServeOthers([](const WebRequest&) { return ScriptedWebAnswer{.status = 404, .ip = "1.0.0.1"}; });
}

// A record of an archive.
inline std::string RecordOfPage(int number) {
  const std::string text = std::to_string(number), body = "<title>Page " + text + "</title>all@firma.de, p" + text +
                                                          "@firma.de <a href=mailto:m" + text + "@firma.de>m</a>";
  const std::string block = "HTTP/1.1 200 OK\r\nContent-Type: text/html\r\n\r\n" + body;
  return "WARC/1.1\r\nWARC-Type: response\r\nWARC-Target-URI: http://www.firma.de/" + text +
         "\r\nWARC-Date: 2026-11-22T13:20:32Z\r\nContent-Length: " + std::to_string(block.size()) + "\r\n\r\n" + block +
         "\r\n\r\n";
}

// In /in: two archives, a page and a file that is neither.
inline void PutArchives(InMemoryFiles& files) {
  files.Put("/in/a.warc", RecordOfPage(0) + RecordOfPage(1));
  files.Put("/in/b.warc", RecordOfPage(2) + RecordOfPage(3));
  files.Put("/in/c.html", "<p>c@firma.de");
  files.Put("/in/d.png", std::string("\x89PNG\0", 5));
}
inline constexpr const char* kOfTheArchives =
    "all@firma.de\nc@firma.de\nm0@firma.de\nm1@firma.de\nm2@firma.de\nm3@firma.de\n"
    "p0@firma.de\np1@firma.de\np2@firma.de\np3@firma.de\n";

// Passes the calls of a web client on, and lets the n-th answer be a failure.
class FailingWebClient final : public WebClient, private WebListener {
 public:
  explicit FailingWebClient(WebClient& client) : client_(client) {}
  FailingWebClient(const FailingWebClient&) = delete;
  FailingWebClient& operator=(const FailingWebClient&) = delete;

  // The n-th answer from now on (1 is the next one); 0: none. With `cut` its head and half of its body arrive.
  void FailAnswer(int n, WebFailure failure = WebFailure::kBroken, bool cut = false) {
    answers_ = 0;
    failing_ = n;
    failure_ = failure;
    cut_ = cut;
  }
  [[nodiscard]] bool reached() const { return answers_ >= failing_; }

  void SetListener(WebListener* listener) override {
    listener_ = listener;
    client_.SetListener(listener == nullptr ? nullptr : this);
  }
  void Start(WebRequest request, const std::string& key) override { client_.Start(std::move(request), key); }
  void Cancel(const std::string& key) override { client_.Cancel(key); }
  void LimitConnections(std::size_t most) override { client_.LimitConnections(most); }
  [[nodiscard]] std::size_t connections() const override { return client_.connections(); }

 private:
  [[nodiscard]] bool OnHead(const std::string& key, const WebHead& head) override {
    if (answers_ + 1 == failing_ && !cut_) return false;
    return listener_->OnHead(key, head);
  }
  void OnEnd(const std::string& key, WebAnswer answer) override {
    if (++answers_ == failing_) {
      answer.failure = failure_;
      answer.message = "it failed on demand";
      answer.body.resize(cut_ ? answer.body.size() / 2 : 0);
      if (!cut_) answer.head = {};
    }
    listener_->OnEnd(key, std::move(answer));
  }

  WebClient& client_;
  WebListener* listener_ = nullptr;
  int answers_ = 0, failing_ = 0;
  WebFailure failure_ = WebFailure::kBroken;
  bool cut_ = false;
};

// A computer with a program folder, the small web and no file yet.
class CollectWorld : public CommandSystem {
 public:
  InMemoryDatabases databases{fake.files};
  FailingWebClient client{fake.web_client};

  CollectWorld() { ServeWeb(fake.web_client); }
  WebClient& web_client() override { return client; }

  int Collect(std::vector<std::string> more = {}) {
    std::vector<std::string> arguments = {"collect", "https://www.firma.de/", "--name", "firma", "--contact",
                                          "me@x.de"};
    arguments.insert(arguments.end(), more.begin(), more.end());
    return Run(std::move(arguments));
  }
  // What the collection holds, in the order of the letters; the reason where it cannot be told.
  [[nodiscard]] std::string Addresses(const std::string& collection = "firma") {
    if (Run({"addresses", collection}) != 0) return errors();
    std::vector<std::string_view> lines = Split(output(), "\n");
    std::sort(lines.begin(), lines.end());
    std::string sorted;
    for (const std::string_view line : lines) {
      if (!line.empty()) sorted += std::string(line) + "\n";
    }
    return sorted;
  }
  // Whether any byte of it stands in any file.
  [[nodiscard]] bool Stores(const std::string& text) const {
    const std::vector<std::string> paths = fake.files.AllFiles();
    return std::any_of(paths.begin(), paths.end(), [&](const std::string& path) {
      return fake.files.Contents(path)->find(text) != std::string::npos;
    });
  }
  // A failure is told in sentences. A file that lies beside a collection would be one that was taken for damaged.
  void ExpectOrderlyEnd(int status) const {
    EXPECT_TRUE(status == 0 || status == 1) << status;
    EXPECT_TRUE(status == 0 || errors().ends_with(" !\n") || errors().ends_with(".\n")) << errors();
    for (const std::string& path : fake.files.AllFiles()) EXPECT_EQ(path.find(".bak"), path.npos) << path;
  }
};

// Makes a Case anew for n = first, first + step, ... and lets `disturb` arrange for its n-th fault, until `reached`
// says that there was none. Act is what is disturbed, and what the next start repeats.
template <typename Case, typename Disturb, typename Calm, typename Reached>
void DisturbEvery(const char* what, std::uint64_t first, std::uint64_t step, Disturb disturb, Calm calm,
                  Reached reached) {
  std::uint64_t faults = 0;
  for (std::uint64_t n = first;; n += step) {
    SCOPED_TRACE(std::string(what) + ", " + std::to_string(n));
    Case test;
    disturb(test.world, n);
    const int status = test.Act();
    test.world.ExpectOrderlyEnd(status);
    const bool was_reached = reached(test.world, n, status);
    calm(test.world);
    if (status == 0) test.Check();
    EXPECT_TRUE(was_reached || status == 0);
    const int next = test.Act();
    EXPECT_EQ(next, 0) << test.world.errors();
    test.world.ExpectOrderlyEnd(next);
    test.Check();
    if (testing::Test::HasFailure()) return;
    if (!was_reached) break;
    ++faults;
  }
  EXPECT_GT(faults, 0u);
  TellFaults(what, faults);
}

// Calls to the files and the database that fail.
template <typename Case>
void FailEveryCall(const char* what, std::uint64_t step) {
  DisturbEvery<Case>(
      what, 1, step, [](CollectWorld& world, std::uint64_t n) { world.fake.files.FailCall(static_cast<int>(n)); },
      [](CollectWorld& world) { world.fake.files.FailCall(0); },
      [](const CollectWorld& world, std::uint64_t n, int) { return world.fake.files.calls() >= static_cast<int>(n); });
}

// Locks of the database that somebody else holds from then on.
template <typename Case>
void HoldEveryLock(const char* what, std::uint64_t step) {
  DisturbEvery<Case>(
      what, 1, step, [](CollectWorld& world, std::uint64_t n) { world.databases.HoldLocks(static_cast<int>(n)); },
      [](CollectWorld& world) { world.databases.HoldLocks(0); },
      [](const CollectWorld& world, std::uint64_t n, int) { return world.databases.locks() >= static_cast<int>(n); });
}

// A disk that takes no more than n bytes more.
template <typename Case>
void FillDisk(const char* what) {
  DisturbEvery<Case>(
      what, 0, FaultStep(7919, 97), [](CollectWorld& world, std::uint64_t n) { world.fake.files.SetFreeSpace(n); },
      [](CollectWorld& world) { world.fake.files.SetFreeSpace(std::nullopt); },
      [](const CollectWorld& world, std::uint64_t, int status) {
        const bool told = world.errors().find("is full !") != std::string::npos ||
                          world.errors().find("no space left") != std::string::npos;
        EXPECT_TRUE(status == 0 || told) << world.errors();
        return status != 0;
      });
}

}  // namespace quenlar
