#include "forms/program.h"

#include <string>
#include <utility>

#include "base/product.h"
#include "engine/home.h"

namespace quenlar {

Program::Program(const Platform& platform, const DesktopPlatform& desktop, Installation installation, System system,
                 Pump::Pace pace)
    : tray({engine, extract, help, about, [this] { End(); }}, desktop.tray),
      extract({engine, classic, collection, web_settings, never, option, tool, sightings, why, tray.tmrExtract,
               tray.mnuExtractor, tray.mnuExit}),
      engine(platform, std::move(installation), {extract, extract, extract}, pace),
      classic(engine),
      collection(engine, desktop.web_client, web_settings, {extract, extract, extract}, pace),
      never({engine, [this] { return extract.RunGoesOn(); }, [this] { TakeOutErased(); }}),
      option({engine.settings, engine.settings_store, engine.filter, platform.files, platform.code_page, platform.boxes,
              engine.installation, [this](const std::string& code) { extract.txtSearch.SetText(code); }}),
      web({platform.registry, web_settings, never, platform.boxes, desktop.dialogs, engine.installation,
           [this] { extract.FollowSetting(); }}),
      tool({engine.books, platform.files, platform.code_page, platform.loop, platform.boxes, desktop.dialogs,
            engine.installation, [this] { return engine.ReadSuppression(); }}),
      sightings(platform.shell),
      dialog(engine.settings, platform.shell, engine.installation, [this] { End(); }),
      about(platform.shell),
      help(platform.shell),
      system_(std::move(system)) {
  engine.OnNewerVersion([this] { dialog.Show(); });
  for (ui::Form* form : Windows()) {
    if (form != &help) form->Help = [this] { help.Show(); };
  }
  extract.mnuWeb.Click = [this] { extract.ShowDialog(web); };
  engine.filter.OnStepLimit([this](const std::string& message) {
    extract.ShowStage(message);
    extract.TellAfterRun(message);
  });
}

bool Program::Start() {
  if (system_.another_instance_runs && system_.another_instance_runs()) return false;
  auto lock = LockHome(engine.platform.files, engine.installation);
  if (lock.ok()) {
    lock_ = lock.take();
  } else if (lock.status().kind() == StatusKind::kBusy) {
    engine.platform.boxes.Show(SentenceOf(lock.status()), kProductCaption, BoxIcon::kExclamation, BoxButtons::kOk);
    return false;
  }
  const Engine::StartNotes notes = engine.Start();
  web_settings = LoadWebSettings(engine.platform.registry);
  collection.LoadTexts();
  for (ui::Timer* timer : {&tray.tmrExtract, &tray.tmrFormatFlux, &tray.tmrFlux, &tray.tmrAlarm, &extract.tmrText}) {
    timers_.push_back(std::make_unique<ui::TimerBinding>(*timer, engine.platform.loop));
  }
  tray.EnsureLoaded();
  tray.mnuExtractor.SetEnabled(false);  // for as long as the main window is shown
  extract.Show();
  // A folder that cannot be written ends nothing: what is there can still be looked at.
  if (!notes.folders.ok()) extract.TellAfterRun(SentenceOf(notes.folders));
  if (!notes.suppression.ok()) extract.TellAfterRun(SentenceOf(notes.suppression));
  if (!notes.notes.empty()) extract.TellAfterRun(notes.notes);
  return !ended_;
}

std::vector<ui::Form*> Program::Windows() {
  return {&extract, &option, &web, &tool, &sightings, &why, &dialog, &about, &help};
}

// What still stands in a window that shows an answer is not known line by line, so it goes whole.
void Program::TakeOutErased() {
  for (ui::Form* form : {static_cast<ui::Form*>(&sightings), static_cast<ui::Form*>(&why)}) {
    if (form->shown()) form->Close();
  }
  extract.TakeOutSuppressed();
}

void Program::SaveRun() {
  if (extract.job().running()) extract.job().SaveAtOnce();
}

// The timers go first, so that nothing begins in the pumps that are still to come. The menu offers no exit during a
// run, but the upgrade dialog does.
void Program::End() {
  if (std::exchange(ended_, true)) return;
  for (ui::Timer* timer : {&tray.tmrExtract, &tray.tmrFormatFlux, &tray.tmrFlux, &tray.tmrAlarm, &extract.tmrText}) {
    timer->SetEnabled(false);
  }
  SaveRun();
  system_.end();
}

}  // namespace quenlar
