// Checks before a run that its results can be saved.
#pragma once

#include "base/status.h"
#include "platform/files.h"
#include "state/run_state.h"

namespace quenlar {

// Fails when a run over `project` could not be saved, so that the run does not begin and its work is not lost. That is
// so when the data file cannot be written, and when the project has no files: a keyword has none when the settings name
// no language and no project was open before. Writes nothing. The message is a sentence without " !".
Status CheckCanBeSaved(Files& files, const Project& project);

}  // namespace quenlar
