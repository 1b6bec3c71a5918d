// quenlar analyze: answers requests on standard input, one JSON object a line, with the engine's page analysis.
#include <CLI/CLI.hpp>
#include <fmt/format.h>

#include "cli/analyze_session.h"
#include "cli/exit_status.h"
#include "cli/line_reader.h"
#include "cli/verbs.h"

namespace quenlar {
namespace {

// Room for the largest page that a download delivers, as base64 or as text with its escapes.
constexpr std::size_t kLongestLine = std::size_t{128} << 20;

int Analyze(Invocation& invocation) {
  const Result<Platform> platform = invocation.system().Open(invocation.choice());
  if (!platform.ok()) {
    invocation.Say(platform.status().message());
    return kExitFailed;
  }
  AnalyzeSession session(platform.value(), invocation.site());
  LineReader reader(invocation.console(), kLongestLine);
  std::string line;
  for (;;) {
    const LineReader::Outcome outcome = reader.Next(line);
    if (outcome == LineReader::Outcome::kEnd) return kExitDone;
    const Json answer = outcome == LineReader::Outcome::kTooLong
                            ? AnalyzeError(fmt::format("a line holds at most {} bytes", kLongestLine))
                            : AnswerAnalyzeLine(session, line);
    // Nobody reads the answers any more: there is nothing left to do, and nobody to tell.
    if (!invocation.console().Write(JsonLine(answer))) return kExitDone;
  }
}

}  // namespace

void DeclareAnalyze(CLI::App& root, Command& chosen) {
  CLI::App* verb = root.add_subcommand("analyze", "Answer requests on standard input with page analysis");
  verb->add_flag("--jsonl")->description("One JSON object a line, in and out")->required();
  verb->footer(
      "Each line of standard input is a request, each line of standard output its answer. Pages are analysed as in a\n"
      "run, but nothing is downloaded, and nothing is written before a project is opened. docs/analyze.md lists the\n"
      "requests.\n\n"
      "Examples:\n"
      "  echo '{\"name\":\"M1http://a.example\",\"text\":\"<p>me@a.test</p>\"}' | quenlar analyze --jsonl\n"
      "  echo '{\"resolve\":\"../x.html\",\"page\":\"http://a.example/b/c.html\"}' | quenlar analyze --jsonl");
  verb->callback([&chosen] { chosen = Analyze; });
}

}  // namespace quenlar
