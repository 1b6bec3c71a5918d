// quenlar report: rewrites a project's report.

#include "cli/commands.h"
#include "cli/exit_status.h"
#include "cli/workplace.h"
#include "engine/engine.h"
#include "platform/files.h"
#include "platform/registry.h"

namespace quenlar {
namespace {

int ReportIn(Invocation& invocation, const Workplace& place, const std::string& text) {
  if (const Status read = place.platform.registry.Flush(); !read.ok()) return invocation.Fail(read);
  RunView view;
  RunHost host;
  ProjectView project_view;
  Engine engine(place.platform, place.installation, {view, host, project_view});
  const Engine::StartNotes notes = engine.Start();
  if (!notes.folders.ok()) return invocation.Fail(notes.folders);
  if (!notes.suppression.ok()) return invocation.Fail(notes.suppression);
  engine.projects.OpenProject(text);
  const Status read = place.platform.files.Read(engine.project.ReportFile, [](std::string_view) { return false; });
  if (!read.ok() && read.kind() != StatusKind::kNotFound) return invocation.Fail(read);
  if (engine.project.found.Count() < 1) {
    invocation.Say("No eMail address found");
    return kExitFailed;
  }
  const Status written = engine.projects.WriteReport();
  if (!written.ok()) return invocation.Fail(written);
  invocation.Print(engine.project.ReportFile);
  return kExitDone;
}

}  // namespace

int Report(Invocation& invocation, const std::string& text) {
  const Result<Workplace> place = TakeWorkplace(invocation);
  if (place.ok()) return ReportIn(invocation, place.value(), text);
  return invocation.Fail(place.status());
}

}  // namespace quenlar
