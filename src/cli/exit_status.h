// Exit statuses of the program. Scripts rely on them, and docs/command-line.md lists them, so they do not change.
#pragma once

namespace quenlar {

inline constexpr int kExitDone = 0;       // what was asked for has been done
inline constexpr int kExitFailed = 1;     // it could not be done; a message says why
inline constexpr int kExitUsage = 2;      // the command line is wrong
inline constexpr int kExitOffLine = 3;    // the computer is off line
inline constexpr int kExitStopped = 130;  // stopped by the user, in order

}  // namespace quenlar
