// The command lines by which Windows opens pages and files.
#pragma once

#include <string>
#include <string_view>

namespace quenlar::win32 {

// Returns the program of a registered open command (the default value of http\shell\open\command). A command that
// begins with a double quote gives the text up to the next one. Any other command gives the text before its first "-".
// Both are trimmed.
//
// So an unquoted path is cut at a hyphen of its own ("C:\my-browser\b.exe" gives "C:\my"). A program whose path holds a
// hyphen is registered in quotes. Kept: BrowserProgram.IsTheQuotedPathOrTheTextBeforeTheFirstHyphen.
[[nodiscard]] std::string BrowserProgram(std::string_view command);

// Returns what starts the system's editor with the file at `path`. The path stands without quotes, although it may have
// blanks: the editor takes the whole rest of its command line for one name.
// Kept: EditorCommandLine.HasThePathUnquotedEvenWithBlanks.
[[nodiscard]] std::string EditorCommandLine(std::string_view system_directory, std::string_view path);

}  // namespace quenlar::win32
