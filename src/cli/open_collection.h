// Opens a collection that a command is asked about.
#pragma once

#include <memory>
#include <string>

#include "base/status.h"
#include "cli/invocation.h"
#include "collection/collection_reader.h"

namespace quenlar {

// The collection of that name, for reading. The message of a failure names the collection, and the command that lists
// them.
[[nodiscard]] Result<std::unique_ptr<CollectionReader>> OpenCollection(Invocation& invocation, const std::string& name);

}  // namespace quenlar
