#include "engine/collections.h"

#include "base/ascii.h"
#include "project/project_name.h"
#include "state/run_state.h"

namespace quenlar {
namespace {

constexpr std::string_view kEnding = ".sqlite";
constexpr std::string_view kDataFileEnding = ".dat";

// Without the scheme, and without what stands behind the host and its port.
std::string_view HostOf(std::string_view start) {
  for (const std::string_view scheme : {"https://", "http://"}) {
    if (StartsWithIgnoreCase(start, scheme)) start.remove_prefix(scheme.size());
  }
  return start.substr(0, start.find_first_of("/?#"));
}

}  // namespace

std::string CollectionName(std::string_view start, std::string_view language, const Installation& installation) {
  Settings settings;
  for (int i = 0; i < static_cast<int>(std::size(kLanguages)); ++i) {
    if (language == kLanguages[i].code) settings.SearchLanguage = static_cast<std::int16_t>(i);
  }
  Project project;
  const std::string text(IsKeywordText(start) ? start : HostOf(start));
  // A keyword with "_" in it names its language itself, or none that there is: then the whole text is the name.
  if (NameProject(project, text, settings, installation) != NamingOutcome::kNamed) return SafeFileName(text);
  const std::string& path = project.DataFile;
  const std::size_t begin = installation.Data("").size();
  return path.substr(begin, path.size() - begin - kDataFileEnding.size());
}

std::string CollectionPath(const Installation& installation, std::string_view name) {
  return installation.Data(SafeFileName(name).append(kEnding));
}

Result<std::vector<std::string>> CollectionNames(const Files& files, const Installation& installation) {
  const Result<std::vector<std::string>> all = files.Names(installation.Data());
  if (all.status().kind() == StatusKind::kNotFound) return std::vector<std::string>();
  if (!all.ok()) return all.status();
  std::vector<std::string> names;
  for (const std::string& name : all.value()) {
    if (name.size() > kEnding.size() && name.ends_with(kEnding) && files.FileExists(installation.Data(name))) {
      names.push_back(name.substr(0, name.size() - kEnding.size()));
    }
  }
  return names;
}

}  // namespace quenlar
