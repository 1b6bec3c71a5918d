#include "engine/engine.h"

#include "engine/upgrade_check.h"
#include "platform/files.h"
#include "project/project_name.h"
#include "settings/filter_file.h"
#include "settings/suppression_file.h"

namespace quenlar {

Engine::Engine(const Platform& given, Installation given_installation, FrontEnd front_end, Pump::Pace pace)
    : platform(given),
      installation(std::move(given_installation)),
      filter(settings),
      settings_store(platform.registry, settings),
      project_list(platform.registry, settings),
      projects(platform, project, settings, installation, front_end.view, front_end.project_view, pace),
      pump(platform.loop, pace),
      web(platform.fetcher, platform.code_page,
          AnalysisContext{run, project, settings, wanted, projects, front_end.view, pump}),
      driver(
          platform.loop, run, project, [this](int offset) { return SearchAddressAt(offset); }, web, platform.files,
          projects, front_end.host),
      watchdog(
          run, settings, platform.interfaces, front_end.view, [this] { driver.CancelStalled(); },
          [this] { StartUpgradeCheck(); }) {
  projects.SetSuppression(&suppression);
  books.SetSuppression(&suppression);
  web.SetEvents(&driver);
  web.SetResetStallCounter([this] { watchdog.ResetStallCounter(); });
  web.SetUpgradeHandler({.parse_upgrade = [this](const std::string& page) { ParseUpgradeHtml(page); },
                         .upgrade_failed = [this] { upgradeDone = true; }});
}

Engine::StartNotes Engine::Start() {
  StartNotes notes;
  for (const std::string& folder : {installation.Data(), installation.Report()}) {
    const Status made = platform.files.MakeFolder(folder);
    if (!made.ok() && notes.folders.ok()) notes.folders = made;
  }
  for (const std::string& message :
       ReadFilterFile(platform.files, platform.code_page, FilterFilePath(installation), filter)) {
    notes.notes += (notes.notes.empty() ? "" : "\n") + message;
  }
  std::vector<std::string> strange_lines;
  notes.suppression = ReadSuppression(strange_lines);
  for (const std::string& message : strange_lines) notes.notes += (notes.notes.empty() ? "" : "\n") + message;
  project_list.Load(settings_store.LoadOrInit());
  return notes;
}

Status Engine::ReadSuppression() {
  std::vector<std::string> told_at_the_start;
  return ReadSuppression(told_at_the_start);
}

Status Engine::ReadSuppression(std::vector<std::string>& strange_lines) {
  Result<SuppressionList> list = LoadSuppressionList(platform.files, platform.idna, installation, strange_lines);
  if (!list.ok()) return list.status();
  if (list.value().entries() != suppression.entries()) ++suppression_changes;
  suppression = list.take();
  return Status::Ok();
}

std::string Engine::SearchAddressAt(int result_offset) const {
  const std::string language = LanguageCode(settings.SearchLanguage);
  return language.empty() ? "" : SearchAddress(installation, language, project.Keyword, result_offset);
}

void Engine::StartUpgradeCheck() {
  web.BeginDownload(kUpgradePage, std::string("U") + kUpgradePage);
  ++run.pending[0];
  ++run.upgrade_share;
}

void Engine::ParseUpgradeHtml(const std::string& page) {
  if (NewerVersionPublished(page) && show_newer_version_) show_newer_version_();
  upgradeDone = true;
}

}  // namespace quenlar
