// Whether a run over the project at hand could be saved.
#pragma once

#include "base/status.h"
#include "platform/files.h"
#include "state/run_state.h"
#include "state/settings.h"

namespace quenlar {

// A run whose links could not be saved would be lost, so it does not begin. Fails for a project without files (a
// keyword without a language, as the first project of a start; one that memory did not hold) and for a data file that
// cannot be written; writes nothing. The message is a sentence without its " !".
Status CheckCanBeSaved(Files& files, const Project& project, const Settings& settings);

}  // namespace quenlar
