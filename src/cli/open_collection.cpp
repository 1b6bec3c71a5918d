#include "cli/open_collection.h"

#include "cli/workplace.h"
#include "engine/collections.h"

namespace quenlar {

Result<std::unique_ptr<CollectionReader>> OpenCollection(Invocation& invocation, const std::string& name) {
  const Result<Platform> platform = OpenHome(invocation);
  if (!platform.ok()) return platform.status();
  const std::string path = CollectionPath(invocation.installation(), name);
  if (!platform.value().files.FileExists(path)) {
    return Status(StatusKind::kNotFound, "There is no collection " + name + "; `quenlar collections` lists them");
  }
  return CollectionReader::Open(path);
}

}  // namespace quenlar
