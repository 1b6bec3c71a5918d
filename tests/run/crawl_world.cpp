#include "run/crawl_world.h"

namespace quenlar {
namespace {

Installation HomeInstallation() {
  Installation installation;
  installation.program_folder = "/home";
  return installation;
}

}  // namespace

CrawlWorld::CrawlWorld()
    : engine((fakes.files.AddFolder("/home"), fakes.platform), HomeInstallation(), FrontEnd{view, *this, project_view},
             Pump::Pace::kAlways) {
  const Engine::StartNotes notes = engine.Start();
  calls.clear();
  if (!notes.folders.ok()) calls.push_back("start: " + notes.folders.message());
  engine.settings.NeverUpgradeFlag = 1;
  tmrAlarm_ = fakes.loop.MakeTimer(std::chrono::seconds(1), [this] { engine.watchdog.Tick(); });
}

void CrawlWorld::Run() {
  stop_pressed_ = false;
  tmrAlarm_->SetEnabled(true);
  engine.driver.Run();
  tmrAlarm_->SetEnabled(false);
}

void CrawlWorld::Stop() {
  stop_pressed_ = true;
  engine.run.stop_requested = true;
}

std::vector<std::string> CrawlWorld::Requests() const {
  std::vector<std::string> keys;
  for (const auto& request : fakes.fetcher.started()) keys.push_back(request.key);
  return keys;
}

std::vector<std::string> CrawlWorld::Addresses() const {
  std::vector<std::string> lines;
  const FoundAddresses& found = engine.project.found;
  for (std::uint32_t i = 0; i < found.Count(); ++i) {
    const FoundAddress record = found.At(i);
    std::string line(record.Address);
    for (const std::string_view part : {record.URL, record.Title}) {
      line += " |";
      if (!part.empty()) line.append(" ").append(part);
    }
    if (record.TagOnly) line += " | tag only";
    lines.push_back(line);
  }
  return lines;
}

std::vector<std::string> CrawlWorld::Queues() const {
  std::vector<std::string> lines;
  for (int level = 0; level < kLevels; ++level) {
    const LinkQueue& queue = engine.project.queues[static_cast<std::size_t>(level)];
    for (std::uint32_t i = 0; i < queue.Count(); ++i) {
      const char* const state = i < queue.Next() ? " visited" : "";
      lines.push_back(std::string(1, SectionLetter(level)) + " " + std::string(queue.At(i).URL) + state);
    }
  }
  return lines;
}

void CrawlWorld::NoteSave(const std::string& file, const Status& saved) {
  calls.push_back(saved.ok() ? file : file + ": " + saved.message());
}

void CrawlWorld::Idle(bool links_visited) {
  calls.emplace_back(links_visited ? "idle, links visited" : "idle");
  view.ShowStage("Extract process ended at " + fakes.clock.TimeText());
}

}  // namespace quenlar
