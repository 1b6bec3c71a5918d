// quenlar delete: deletes a project with its files.
#include <algorithm>

#include <CLI/CLI.hpp>

#include "app/engine.h"
#include "cli/command_front_end.h"
#include "cli/exit_status.h"
#include "cli/verbs.h"
#include "cli/workplace.h"
#include "platform/message_boxes.h"

namespace quenlar {
namespace {

struct Arguments {
  std::string text;
  bool yes = false;
};

bool Holds(const std::vector<std::string>& entries, const std::string& name) {
  return std::find(entries.begin(), entries.end(), name) != entries.end();
}

// The name under which the list has the project: a keyword stands there with its language.
std::string NameInList(const Engine& engine, const std::string& text) {
  const std::vector<std::string>& entries = engine.project_list.entries();
  if (Holds(entries, text) || !engine.project.is_keyword || text.find('_') != std::string::npos) return text;
  const std::string with_language = text + "_" + LanguageCode(engine.settings.SearchLanguage);
  return Holds(entries, with_language) ? with_language : text;
}

int DeleteIn(Invocation& invocation, const Workplace& place, const Arguments& arguments) {
  CommandFrontEnd front_end;
  Engine engine(place.platform, place.site, front_end.AsFrontEnd());
  const Engine::StartNotes notes = engine.Start();
  if (!notes.folders.ok()) {
    invocation.Say(notes.folders.message() + " !");
    return kExitFailed;
  }
  front_end.Open(engine, arguments.text);
  const std::string name = NameInList(engine, front_end.input_text());
  const bool has_files = place.platform.files.FileExists(engine.project.data_file) ||
                         place.platform.files.FileExists(engine.project.report_file);
  if (!has_files && !Holds(engine.project_list.entries(), name)) {
    invocation.Say("There is no project " + name + " !");
    return kExitFailed;
  }
  if (!arguments.yes) {
    const std::string question = name + ": Are you sure to delete it ?";
    const BoxAnswer answer =
        place.platform.boxes.Show(question, kProductCaption, BoxIcon::kExclamation, BoxButtons::kYesNo);
    if (answer != BoxAnswer::kYes) return kExitFailed;
  }
  const Status deleted = engine.projects.DeleteFiles();
  if (!deleted.ok()) {
    invocation.Say(deleted.message());
    return kExitFailed;
  }
  engine.project_list.Remove(name);
  engine.project_list.WriteProjectKey(/*with_filters=*/false);
  return kExitDone;
}

int Delete(Invocation& invocation, const Arguments& arguments) {
  const Result<Workplace> place = TakeWorkplace(invocation);
  if (place.ok()) return DeleteIn(invocation, place.value(), arguments);
  invocation.Say(place.status().message() + " !");
  return kExitFailed;
}

}  // namespace

void DeclareDelete(CLI::App& root, Command& chosen) {
  const auto arguments = std::make_shared<Arguments>();
  CLI::App* verb = root.add_subcommand("delete", "Delete a project with its files");
  verb->add_option("TEXT", arguments->text, "The project, as `quenlar projects` lists it")->type_name("")->required();
  verb->add_flag("-y,--yes", arguments->yes, "Do not ask");
  verb->footer(
      "Asks on the terminal, and deletes nothing unless the answer is yes. A keyword may be given without its\n"
      "language. A project that has files but stands nowhere in the list takes the oldest entry of the list with it;\n"
      "that entry's files stay.\n\n"
      "Examples:\n"
      "  quenlar delete gardening_en\n"
      "  quenlar delete --yes www.example.org");
  verb->callback([&chosen, arguments] {
    chosen = [arguments](Invocation& invocation) { return Delete(invocation, *arguments); };
  });
}

}  // namespace quenlar
