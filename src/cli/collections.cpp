// quenlar collections: the collections, the last run first.
#include "engine/collections.h"

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

#include <fmt/format.h>

#include "cli/commands.h"
#include "cli/exit_status.h"
#include "cli/workplace.h"
#include "collection/collection_reader.h"

namespace quenlar {
namespace {

struct Listed {
  std::string name;
  CollectionFigures figures;
};

Result<CollectionFigures> FiguresOf(const Installation& installation, const std::string& name) {
  const auto reader = CollectionReader::Open(CollectionPath(installation, name));
  if (!reader.ok()) return reader.status();
  return reader.value()->Figures();
}

}  // namespace

int Collections(Invocation& invocation) {
  const Result<Platform> platform = OpenHome(invocation);
  if (!platform.ok()) return invocation.Fail(platform.status());
  const Installation installation = invocation.installation();
  const auto names = CollectionNames(platform.value().files, installation);
  if (!names.ok()) return invocation.Fail(names.status());
  int status = kExitDone;
  std::vector<Listed> all;
  for (const std::string& name : names.value()) {
    const Result<CollectionFigures> figures = FiguresOf(installation, name);
    if (figures.ok()) {
      all.push_back({name, figures.value()});
    } else if (figures.status().kind() != StatusKind::kNotFound) {
      status = invocation.Fail(figures.status());
    }
  }
  std::stable_sort(all.begin(), all.end(),
                   [](const Listed& a, const Listed& b) { return a.figures.last_run > b.figures.last_run; });
  if (invocation.console().OutputIsTerminal() && !all.empty()) {
    invocation.Print("name\taddresses\tpages\tleft");
  }
  for (const Listed& listed : all) {
    const CollectionFigures& f = listed.figures;
    if (!invocation.Print(fmt::format("{}\t{}\t{}\t{}", listed.name, f.addresses, f.pages, f.left))) break;
  }
  return status;
}

}  // namespace quenlar
