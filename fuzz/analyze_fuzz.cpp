// The line protocol: any bytes are answered by one line of JSON a line, a line that fails changes nothing, and lines
// are told apart as a plain search for line feeds tells them apart.
#include <string>
#include <vector>

#include <nlohmann/json.hpp>

#include "cli/analyze_session.h"
#include "cli/fake_console.h"
#include "cli/line_reader.h"
#include "cli/terminal_text.h"
#include "fuzz/target.h"
#include "support/fake_platform.h"

using namespace quenlar;

namespace {

struct Session {
  Session() { computer.files.AddFolder("/p"); }
  FakePlatform computer;
  AnalyzeSession session{computer.platform, [] {
                           Installation installation;
                           installation.program_folder = "/p";
                           return installation;
                         }()};
};

std::vector<std::string> LinesAsRead(std::string_view bytes, std::size_t block, std::size_t longest) {
  FakeConsole console;
  console.input = bytes;
  console.largest_read = block;
  LineReader reader(console, longest);
  std::vector<std::string> lines;
  std::string line;
  for (;;) {
    const LineReader::Outcome outcome = reader.Next(line);
    if (outcome == LineReader::Outcome::kEnd) return lines;
    lines.push_back(outcome == LineReader::Outcome::kLine ? line : "(too long)");
  }
}

std::vector<std::string> LinesAsDefined(std::string_view bytes, std::size_t longest) {
  std::vector<std::string> lines;
  while (!bytes.empty()) {
    const std::size_t length = bytes.substr(0, bytes.find('\n')).size();
    lines.push_back(length <= longest ? std::string(bytes.substr(0, length)) : "(too long)");
    bytes.remove_prefix(std::min(length + 1, bytes.size()));
  }
  return lines;
}

}  // namespace

QUENLAR_FUZZ_TARGET(analyze) {
  fuzz::Feed feed(bytes);
  const std::size_t block = 1 + feed.Byte();
  const std::string_view text = feed.Rest();
  FUZZ_CHECK(LinesAsRead(text, block, 40) == LinesAsDefined(text, 40));

  std::vector<std::string> lines = LinesAsDefined(text, text.size());
  if (lines.size() > 40) lines.resize(40);
  Session every_line, good_lines;
  for (const std::string& line : lines) {
    const std::string answer = every_line.session.Answer(line);
    FUZZ_CHECK(answer.find('\n') == answer.size() - 1);
    FUZZ_CHECK(IsUtf8(answer));
    const nlohmann::json parsed = nlohmann::json::parse(answer, nullptr, /*allow_exceptions=*/false);
    FUZZ_CHECK(parsed.is_object() && !parsed.empty());
    if (!parsed.contains("error")) FUZZ_CHECK(good_lines.session.Answer(line) == answer);
  }
}
