// The suppression list of a command's program folder.
#pragma once

#include "base/status.h"
#include "cli/invocation.h"
#include "platform/platform.h"
#include "settings/suppression_list.h"

namespace quenlar {

// See LoadSuppressionList; lines that are no entry are told. Without a program folder the list is empty.
[[nodiscard]] Result<SuppressionList> LoadSuppression(Invocation& invocation, const Platform& platform);

}  // namespace quenlar
