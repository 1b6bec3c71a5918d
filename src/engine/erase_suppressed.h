// What a collection still holds of the suppression list goes before its run begins.
#pragma once

#include <string>
#include <vector>

#include "base/status.h"
#include "platform/files.h"
#include "settings/suppression_list.h"

namespace quenlar {

// Takes the suppressed addresses out of the collection at `path`, which need not exist, and tells how many by a
// sentence without its end in `notices`. Where another program reads the collection they stay until the next run, which
// is a notice too: nothing lists them meanwhile. A damaged collection is left alone; its opening keeps it aside.
[[nodiscard]] Status EraseSuppressed(const Files& files, const std::string& path, SuppressionList& suppression,
                                     std::vector<std::string>& notices);

}  // namespace quenlar
