// quenlar report: rewrites a project's report.
#include <CLI/CLI.hpp>

#include "app/engine.h"
#include "cli/command_front_end.h"
#include "cli/exit_status.h"
#include "cli/verbs.h"
#include "cli/workplace.h"

namespace quenlar {
namespace {

int ReportIn(Invocation& invocation, const Workplace& place, const std::string& text) {
  CommandFrontEnd front_end;
  Engine engine(place.platform, place.site, front_end.AsFrontEnd());
  const Engine::StartNotes notes = engine.Start();
  if (!notes.folders.ok()) {
    invocation.Say(notes.folders.message() + " !");
    return kExitFailed;
  }
  front_end.Open(engine, text);
  if (engine.project.found.Count() < 1) {
    invocation.Say("No eMail address found");
    return kExitFailed;
  }
  const Status written = engine.projects.WriteReport();
  if (!written.ok()) {
    invocation.Say(written.message());
    return kExitFailed;
  }
  invocation.Print(engine.project.report_file);
  return kExitDone;
}

int Report(Invocation& invocation, const std::string& text) {
  const Result<Workplace> place = TakeWorkplace(invocation);
  if (place.ok()) return ReportIn(invocation, place.value(), text);
  invocation.Say(place.status().message() + " !");
  return kExitFailed;
}

}  // namespace

void DeclareReport(CLI::App& root, Command& chosen) {
  const auto text = std::make_shared<std::string>();
  CLI::App* verb = root.add_subcommand("report", "Rewrite a project's report and print its path");
  verb->add_option("TEXT", *text, "The project, as `quenlar projects` lists it")->type_name("")->required();
  verb->footer(
      "The report holds the addresses alone or all information, as the setting Export says.\n\n"
      "Examples:\n"
      "  quenlar report www.example.org\n"
      "  less \"$(quenlar report gardening_en)\"");
  verb->callback([&chosen, text] { chosen = [text](Invocation& invocation) { return Report(invocation, *text); }; });
}

}  // namespace quenlar
