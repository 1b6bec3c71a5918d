// The session behind `quenlar analyze`: the web control, the project files and the filters without a transport. Each
// request is answered by what the same event would have done in a run.
#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "platform/platform.h"
#include "state/settings.h"

namespace quenlar {

class AnalyzeSession {
 public:
  // Of the platform only the files are used, so an answer does not depend on a clock, a locale or a setting of the
  // computer. The code page is Windows-1252 everywhere. `installation` names the program folder. It is made and locked
  // when the first project is opened, and not before.
  AnalyzeSession(const Platform& platform, Installation installation);
  ~AnalyzeSession();
  AnalyzeSession(const AnalyzeSession&) = delete;
  AnalyzeSession& operator=(const AnalyzeSession&) = delete;

  // Returns the answer to one line of JSON, as a line of JSON with its line feed. A line that is not a request is
  // answered {"error": ...} and changes nothing. The member `id` of the line comes back in every answer.
  [[nodiscard]] std::string Answer(std::string_view line);

 private:
  struct State;
  struct Answering;

  Platform lent_;
  Installation installation_;
  std::unique_ptr<State> state_;
};

// Returns {"error": message} as a line.
[[nodiscard]] std::string AnalyzeErrorLine(const std::string& message);

}  // namespace quenlar
