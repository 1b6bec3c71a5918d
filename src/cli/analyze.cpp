// quenlar analyze: answers requests on standard input, one JSON object a line, with the engine's page analysis.
#include <fmt/format.h>

#include "cli/analyze_session.h"
#include "cli/commands.h"
#include "cli/exit_status.h"
#include "cli/line_reader.h"

namespace quenlar {
namespace {

// Room for the largest page that a download delivers, as base64 or as text with its escapes.
constexpr std::size_t kLongestLine = std::size_t{128} << 20;

}  // namespace

int Analyze(Invocation& invocation) {
  const Result<Platform> platform = invocation.system().Open(invocation.choice());
  if (!platform.ok()) return invocation.Fail(platform.status());
  AnalyzeSession session(platform.value(), invocation.installation());
  LineReader reader(invocation.console(), kLongestLine);
  std::string line;
  for (;;) {
    const LineReader::Outcome outcome = reader.Next(line);
    if (outcome == LineReader::Outcome::kEnd) return kExitDone;
    const std::string answer = outcome == LineReader::Outcome::kTooLong
                                   ? AnalyzeErrorLine(fmt::format("a line holds at most {} bytes", kLongestLine))
                                   : session.Answer(line);
    // Nobody reads the answers any more: there is nothing left to do, and nobody to tell.
    if (!invocation.console().Write(answer)) return kExitDone;
  }
}

}  // namespace quenlar
