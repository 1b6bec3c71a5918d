// quenlar delete: deletes a project with its files.
#include <algorithm>
#include <utility>

#include "base/product.h"
#include "cli/commands.h"
#include "cli/exit_status.h"
#include "cli/workplace.h"
#include "engine/engine.h"
#include "platform/message_boxes.h"
#include "platform/registry.h"

namespace quenlar {
namespace {

// The text that names the project: the one that was given, or what opening it has left of that.
class ProjectText final : public ProjectView {
 public:
  explicit ProjectText(std::string given) : text_(std::move(given)) {}
  void InputText(const std::string& text) override { text_ = text; }
  [[nodiscard]] const std::string& text() const { return text_; }

 private:
  std::string text_;
};

bool Holds(const std::vector<std::string>& entries, const std::string& name) {
  return std::find(entries.begin(), entries.end(), name) != entries.end();
}

// The name under which the list has the project: a keyword stands there with its language.
std::string NameInList(const Engine& engine, const std::string& text) {
  const std::vector<std::string>& entries = engine.project_list.entries();
  if (Holds(entries, text)) return text;
  const std::string listed = ListedName(text, engine.project.IsKeywordProject, engine.settings.SearchLanguage);
  return Holds(entries, listed) ? listed : text;
}

int DeleteIn(Invocation& invocation, const Workplace& place, const DeleteArguments& arguments) {
  if (const Status read = place.platform.registry.Flush(); !read.ok()) return invocation.Fail(read);
  RunView view;
  RunHost host;
  ProjectText named(arguments.text);
  Engine engine(place.platform, place.installation, {view, host, named});
  const Engine::StartNotes notes = engine.Start();
  if (!notes.folders.ok()) return invocation.Fail(notes.folders);
  engine.projects.OpenProject(arguments.text);
  const std::string name = NameInList(engine, named.text());
  const bool has_files = place.platform.files.FileExists(engine.project.DataFile) ||
                         place.platform.files.FileExists(engine.project.ReportFile);
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
  if (!deleted.ok()) return invocation.Fail(deleted);
  engine.project_list.Remove(name);
  engine.project_list.WriteProjectKey(/*with_filters=*/false);
  const Status stored = place.platform.registry.Flush();
  return stored.ok() ? kExitDone : invocation.Fail(stored);
}

}  // namespace

int Delete(Invocation& invocation, const DeleteArguments& arguments) {
  const Result<Workplace> place = TakeWorkplace(invocation);
  if (place.ok()) return DeleteIn(invocation, place.value(), arguments);
  return invocation.Fail(place.status());
}

}  // namespace quenlar
