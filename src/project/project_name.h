// Derives the names of a project's files and its start address from the text that the user has typed.
#pragma once

#include <string>
#include <string_view>

#include "state/run_state.h"
#include "state/settings.h"

namespace quenlar {

// Returns whether `text` is a keyword. A text with a "." anywhere is a web address, and any other text is a keyword.
[[nodiscard]] bool IsKeywordText(std::string_view text);

// Returns the address of the search engine's result page for a keyword. The page begins with the result number
// `offset`, which counts from 0. `language` is a two-letter code.
[[nodiscard]] std::string SearchAddress(const Installation& installation, std::string_view language,
                                        std::string_view keyword, int offset);

enum class NamingOutcome {
  kNamed,
  kUnknownLanguage,  // no suffix, and the language setting names no language: keyword, address and files are unchanged
  kUnknownSuffix,    // a suffix that names no language ("cars_jp"): call again with the text before the first "_"
};

// Sets IsKeywordProject, Keyword, StartURL, DataFile, ReportFile and ProjectLanguage of `project` from `text` (UTF-8).
// A keyword may end in "_" and a language code, such as "cars_de"; without one it takes the language of the settings.
NamingOutcome NameProject(Project& project, std::string_view text, const Settings& settings,
                          const Installation& installation);

// Returns a file name, without a folder, that every platform can hold. Characters that a Windows file name cannot hold
// are percent-encoded. A name of more than 200 bytes is cut and gets a hash at its end, so that two long names stay
// apart. Every other name comes back as it is.
[[nodiscard]] std::string SafeFileName(std::string_view name);

}  // namespace quenlar
