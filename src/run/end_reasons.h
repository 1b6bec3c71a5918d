// Why a run has ended, in the words that the user reads. The window shows them in a message box, the command line on
// standard error, and scripts find them in the summary of a run.
#pragma once

namespace quenlar {

inline constexpr const char* kEndOffLine = "You are not on the internet !";
inline constexpr const char* kEndStopButton = "You press the stop button !";
inline constexpr const char* kEndStopNumber = "You have extracted emails as your desire !";
inline constexpr const char* kEndAllParsed = "All links have been parsed !";
inline constexpr const char* kEndNoMemory = "There is not enough memory !";

}  // namespace quenlar
