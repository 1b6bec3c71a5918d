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

[[nodiscard]] std::string FilterFilePath(const Installation& installation);

// Replaces the file. One that could not be read is kept aside first, so that its words are not lost.
Status WriteFilterFile(Files& files, const CodePage& code_page, const std::string& path, FilterWords& words);

// ReadFilterFile: appends the file's words to both lists and builds the patterns; a missing file changes nothing.
// Returns the messages of BuildFilterPatterns; an unreadable file is one more message, and is kept by the next save.
[[nodiscard]] std::vector<std::string> ReadFilterFile(const Files& files, const CodePage& code_page,
                                                      const std::string& path, FilterWords& words);

}  // namespace quenlar
