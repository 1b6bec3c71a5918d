// The suppression list of a command's program folder.
#pragma once

#include "base/status.h"
#include "cli/invocation.h"
#include "platform/platform.h"
#include "settings/suppression_list.h"

namespace quenlar {

// Reads the list. Fails where the file is there and cannot be read or is not a text: then nobody knows what is
// suppressed, and the command must list nothing. Lines that are not entries are passed over, with a message on standard
// error. Without a program folder, or without the file, the list is empty. Does not pump.
[[nodiscard]] Result<SuppressionList> LoadSuppression(Invocation& invocation, const Platform& platform);

}  // namespace quenlar
