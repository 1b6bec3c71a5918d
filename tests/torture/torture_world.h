// A small site, an engine that crawls it for nobody in particular, and what its files must look like whatever happens.
#pragma once

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "engine/engine.h"
#include "project/data_file.h"
#include "run/end_reasons.h"
#include "support/fake_platform.h"

namespace quenlar {

// A start page that links to kPages pages with kAddresses addresses each; more than a save's interval together.
inline constexpr int kPages = 6, kAddresses = 6;

inline std::string StartPage() {
  std::string page = "<title>Start</title>";
  for (int i = 0; i < kPages; ++i) page += "<a href=\"/p" + std::to_string(i) + ".html\">x</a>";
  return page;
}

inline std::string Address(int page, int k) {
  return "u" + std::to_string(page) + "n" + std::to_string(k) + "@h.example.org";
}

inline std::string Page(int page) {
  std::string text = "<title>Page</title>";
  for (int k = 0; k < kAddresses; ++k) text += "<p>" + Address(page, k) + "</p>";
  return text;
}

inline void ServeSite(ScriptedFetcher& fetcher) {
  fetcher.Serve("http://www.h.example", StartPage());
  for (int i = 0; i < kPages; ++i) fetcher.Serve("http://www.h.example/p" + std::to_string(i) + ".html", Page(i));
}

// Every page of search results gives the site and nothing else.
inline void ServeSearch(ScriptedFetcher& fetcher) {
  fetcher.ServeOthers([](const std::string& address) -> std::optional<ScriptedAnswer> {
    if (address.find("/search?") == std::string::npos) return Failure();
    return ScriptedAnswer{.body = "<h3 class=r><a href=\"http://www.h.example\"></a>"};
  });
}

// The addresses of the site that a text does not hold, one a line.
inline std::string MissingIn(const std::string& text) {
  std::string missing;
  for (int i = 0; i < kPages; ++i) {
    for (int k = 0; k < kAddresses; ++k) {
      if (text.find(Address(i, k)) == text.npos) missing += Address(i, k) + "\n";
    }
  }
  return missing;
}

// What a run says.
class Messages : public RunView, public RunHost {
 public:
  void ShowStage(const std::string& text) override { stages.push_back(text); }
  void RunEnded(const std::string& reason) override { ends.push_back(reason); }
  void DataSaved(const Status& saved) override { Note(saved); }
  void ReportSaved(const Status& saved) override { Note(saved); }

  [[nodiscard]] bool Staged(const std::string& text) const {
    for (const std::string& stage : stages) {
      if (stage == text) return true;
    }
    return false;
  }

  std::vector<std::string> stages, ends, failures;

 private:
  void Note(const Status& status) {
    if (!status.ok()) failures.push_back(status.message());
  }
};

inline constexpr const char* kData = "/home/data/h_example.dat";
inline constexpr const char* kReport = "/home/report/h_example.rpt";

// The program folder is "/home".
struct World {
  FakePlatform fakes;
  Messages front;
  ProjectView project_view;
  Engine engine{fakes.platform, MakeInstallation(), {front, front, project_view}};

  World() {
    fakes.files.AddFolder("/home/data");
    fakes.files.AddFolder("/home/report");
    ServeSite(fakes.fetcher);
  }
  static Installation MakeInstallation() {
    Installation installation;
    installation.program_folder = "/home";
    return installation;
  }
  // With the watchdog's timer, as every front end has it.
  void Run() {
    const auto alarm = fakes.loop.MakeTimer(std::chrono::seconds(1), [this] { engine.watchdog.Tick(); });
    alarm->SetEnabled(true);
    engine.driver.Run();
  }
  [[nodiscard]] std::string File(const char* path) const { return fakes.files.Contents(path).value_or("(none)"); }
};

inline void CopyFiles(const InMemoryFiles& from, InMemoryFiles& to) {
  for (const std::string& path : from.AllFiles()) to.Put(path, *from.Contents(path));
}

// A data file is whole when it has its header, and all sections in order.
inline bool IsWholeDataFile(const std::string& text) {
  if (!text.starts_with(HeaderLine() + "\r\n") || !text.ends_with("\r\n")) return false;
  std::size_t from = 0;
  for (const char letter : std::string("ABCDEMFGHIJ")) {
    const std::size_t at = text.find(std::string("\r\n[") + letter + "]\r\n", from == 0 ? 0 : from - 2);
    if (at == text.npos) return false;
    from = at + 5;
  }
  return true;
}

inline void ExpectWholeFiles(const InMemoryFiles& files, const std::string& data_path, const std::string& report_path) {
  const std::string data = files.Contents(data_path).value_or("(none)");
  const std::string report = files.Contents(report_path).value_or("(none)");
  EXPECT_TRUE(data == "(none)" || IsWholeDataFile(data)) << data;
  EXPECT_TRUE(report == "(none)" || (report.starts_with(HeaderLine()) && report.ends_with("\r\n"))) << report;
}

// From one n to the next: `usual`, more under sanitizers, or `thorough` for a long run, which QUENLAR_EVERY_FAULT asks
// for.
inline std::uint64_t FaultStep(std::uint64_t usual, std::uint64_t thorough = 1) {
  if (std::getenv("QUENLAR_EVERY_FAULT") != nullptr) return thorough;
#ifdef __SANITIZE_ADDRESS__
  usual *= 5;
#endif
  return usual;
}

// For docs/reliability.md.
inline void TellFaults(const char* what, std::uint64_t faults) {
  std::printf("[ faults   ] %6llu  %s\n", static_cast<unsigned long long>(faults), what);
}

}  // namespace quenlar
