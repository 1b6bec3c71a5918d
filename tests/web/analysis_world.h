// What page analysis needs around it; every pump point really pumps.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "support/fake_event_loop.h"
#include "support/recording_view.h"
#include "web/page_analysis.h"

namespace quenlar {

using Strings = std::vector<std::string>;

struct AnalysisWorld : AddressFilter, PeriodicSaver {
  FakeEventLoop loop;
  RunState run;
  Project project;
  Settings settings;
  RecordingView view;
  std::function<bool(std::string_view)> keeps = [](std::string_view) { return true; };
  std::vector<std::uint32_t> data_saves, report_saves;  // the address count at each save
  std::function<void()> while_saving = [] {};
  Pump pump{loop, Pump::Pace::kAlways};
  AnalysisContext context{run, project, settings, *this, *this, view, pump};

  bool Keeps(std::string_view address) override { return keeps(address); }
  void SaveProjectData() override {
    data_saves.push_back(project.found.Count());
    while_saving();
  }
  void SaveProjectReport() override { report_saves.push_back(project.found.Count()); }

  [[nodiscard]] Strings Addresses() const {
    Strings all;
    for (std::uint32_t i = 0; i < project.found.Count(); ++i) all.emplace_back(project.found.At(i).Address);
    return all;
  }
  [[nodiscard]] Strings Queue(int level) const {
    Strings all;
    const LinkQueue& queue = project.queues[static_cast<std::size_t>(level)];
    for (std::uint32_t i = 0; i < queue.Count(); ++i) all.emplace_back(queue.At(i).URL);
    return all;
  }
  HarvestEnd Harvest(std::string_view page) { return ExtractAddresses(context, page, "http://h/page.html"); }
  PageOutcome Parse(std::string_view page, std::string_view request_name = "M1http://h/a/page.html") {
    return ParsePage(context, page, request_name);
  }
};

}  // namespace quenlar
