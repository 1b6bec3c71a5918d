// The program's own page analysis with nothing around it, for measuring.
#pragma once

#include <optional>
#include <string_view>

#include "page/page_reader.h"
#include "platform/posix/iconv_text_decoder.h"
#include "platform/posix/idn2_idna.h"
#include "state/run_state.h"
#include "web/page_analysis.h"

namespace quenlar::bench {

// An event loop in which nothing ever arrives.
class IdleLoop final : public EventLoop {
 public:
  void Yield() override { ++yields; }
  void Wait(std::chrono::milliseconds) override {}
  void Post(std::function<void()>) override {}
  std::unique_ptr<LoopTimer> MakeTimer(std::chrono::milliseconds, std::function<void()>) override { return nullptr; }
  std::size_t yields = 0;
};

class PageBench : private AddressFilter, private PeriodicSaver {
 public:
  explicit PageBench(Pump::Pace pace = Pump::Pace::kWhenTimeHasPassed) : pump_(loop_, pace) {
    settings.StopNumber = 2'000'000'000;
    project.IsKeywordProject = false;
  }

  void Harvest(std::string_view page) {
    (void)ExtractAddresses(context_, page, "http://www.bench.example/docs/page.html");
  }
  // Conversion is the caller's; this is harvest, tag walk, resolution and queues, as a level-0 page.
  void Analyse(std::string_view page) { (void)ParsePage(context_, page, "M1http://www.bench.example/docs/page.html"); }
  void Reset() {
    project.found.Clear();
    for (LinkQueue& queue : project.queues) queue.Clear();
  }

  IdleLoop loop_;
  RunState run;
  Project project;
  Settings settings;

 private:
  bool Keeps(std::string_view) override { return true; }
  void SaveProjectData() override {}
  void SaveProjectReport() override {}

  RunView view_;
  Pump pump_;
  AnalysisContext context_{run, project, settings, *this, *this, view_, pump_};
};

// The reader of today's pages, as a collection uses it.
class ReadBench {
 public:
  // Returns the number of links and addresses.
  std::size_t Read(std::string_view page) const {
    ReadRequest request;
    request.body = page;
    request.url = &*url_;
    const ReadResult result = ReadPage(request, idna_, decoder_);
    return result.links.size() + result.addresses.size();
  }

 private:
  Idn2Idna idna_;
  IconvTextDecoder decoder_;
  std::optional<Url> url_ = ParseUrl("http://www.bench.example/docs/page.html", nullptr, idna_);
};

}  // namespace quenlar::bench
