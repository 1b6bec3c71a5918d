#include "platform/end_on_crash.h"

namespace quenlar {

// Here a crash is a signal, and its default is to end the process.
void EndOnCrash() {}

}  // namespace quenlar
