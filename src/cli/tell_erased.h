// What the commands that take addresses out of everything have in common.
#pragma once

#include "base/status.h"
#include "cli/invocation.h"
#include "platform/files.h"
#include "platform/platform.h"
#include "settings/suppression_list.h"

namespace quenlar {

// Takes the addresses of `list` out of everything that is stored, and tells what came of it; `subject` begins the
// sentence ("anna@example.org"). Where another program holds the program folder, the files of projects stay as they
// are. Returns the exit status. The program folder must exist.
[[nodiscard]] int EraseAndTell(Invocation& invocation, const Platform& platform, const SuppressionList& list,
                               const std::string& subject);

}  // namespace quenlar
