// What a test program does when it crashes.
#pragma once

namespace quenlar {

inline constexpr int kCrashStatus = 99;

// From now on a crash of this process (an invalid access, a failed assertion, an exception that nobody catches) ends
// it at once with a failure status, without a dialog that would wait for somebody to press a button.
void EndOnCrash();

}  // namespace quenlar
