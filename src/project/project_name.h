// Names a project's files and start address from the text that the user typed.
#pragma once

#include <string>
#include <string_view>

#include "state/run_state.h"
#include "state/settings.h"

namespace quenlar {

// A text with a "." anywhere is a web address, any other text a keyword.
[[nodiscard]] bool IsKeywordText(std::string_view text);

// The search engine's result page for a keyword, `offset` results on.
[[nodiscard]] std::string SearchAddress(const Installation& installation, std::string_view language,
                                        std::string_view keyword, int offset);

enum class NamingOutcome {
  kNamed,
  kUnknownLanguage,  // no suffix and a language setting outside 0 to 5: keyword, address and files stay as they were
  kUnknownSuffix,    // "cars_jp": ask NameProject again with the text before the first "_"
};

// Sets IsKeywordProject, Keyword, StartURL, DataFile, ReportFile and ProjectLanguage of `project` from `text`.
NamingOutcome NameProject(Project& project, std::string_view text, const Settings& settings,
                          const Installation& installation);

// A file name (no folder) that every platform can hold: what a Windows file name cannot hold is percent-encoded,
// names over 200 bytes are cut and given a hash. All other names come back as they are.
[[nodiscard]] std::string SafeFileName(std::string_view name);

}  // namespace quenlar
