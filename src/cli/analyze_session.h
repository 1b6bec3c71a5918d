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
  // The platform lends its files, and nothing else: an answer depends on no clock, locale or setting of the computer.
  // The code page is Windows-1252 everywhere. `installation` names the program folder, whose folders are made and which
  // is locked when the first project is opened, and not before.
  AnalyzeSession(const Platform& platform, Installation installation);
  ~AnalyzeSession();
  AnalyzeSession(const AnalyzeSession&) = delete;
  AnalyzeSession& operator=(const AnalyzeSession&) = delete;

  // The answer to one line of JSON, as a line of JSON with its line feed: to a request, or {"error": ...} to what is
  // none; `id` comes back in both. A line that fails changes nothing.
  [[nodiscard]] std::string Answer(std::string_view line);

 private:
  struct State;
  struct Answering;

  Platform lent_;
  Installation installation_;
  std::unique_ptr<State> state_;
};

// {"error": message} as a line.
[[nodiscard]] std::string AnalyzeErrorLine(const std::string& message);

}  // namespace quenlar
