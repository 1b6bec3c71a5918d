// Whether a run over the project at hand could be saved.
#pragma once

#include "base/status.h"
#include "platform/files.h"
#include "state/run_state.h"

namespace quenlar {

// A run whose links could not be saved would be lost, so it does not begin. Fails for a project without files, as that
// of a keyword without a language is when it is the first one of a start, and for a data file that cannot be written;
// writes nothing. The message is a sentence without its " !".
Status CheckCanBeSaved(Files& files, const Project& project);

}  // namespace quenlar
