// The filter file `data\ExtractFilter.dat`: a banner line, an empty line, then one word a line,
// <r>word</r> for the remove filter and <e>word</e> for the extract filter. ANSI code page, CR LF.
#pragma once

#include <string>
#include <vector>

#include "base/status.h"
#include "platform/code_page.h"
#include "platform/files.h"
#include "settings/filter_words.h"

namespace quenlar {

// The path of the filter file below the program folder.
[[nodiscard]] std::string FilterFilePath(const Installation& installation);

// Replaces the file with the words of both lists. A file that could not be read is kept aside first, so that its words
// are not lost. kLimit with "Overflow !" when a list has more than 32,768 words; nothing has been touched then.
Status WriteFilterFile(Files& files, const CodePage& code_page, const std::string& path, FilterWords& words);

// Appends the words of the file to both lists and builds the patterns. A missing file changes nothing. Returns the
// messages of BuildFilterPatterns, and one more when the file cannot be read; the next save keeps such a file aside.
[[nodiscard]] std::vector<std::string> ReadFilterFile(const Files& files, const CodePage& code_page,
                                                      const std::string& path, FilterWords& words);

}  // namespace quenlar
