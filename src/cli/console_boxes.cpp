#include "cli/console_boxes.h"

#include "base/ascii.h"
#include "cli/line_reader.h"
#include "cli/terminal_text.h"

namespace quenlar {

BoxAnswer ConsoleBoxes::Show(const std::string& text, const std::string&, BoxIcon, BoxButtons buttons) {
  if (buttons == BoxButtons::kOk) {
    console_.WriteError(ForTerminal(text) + "\n");
    return BoxAnswer::kOk;
  }
  console_.WriteError(ForTerminal(text) + " [y/N] ");
  constexpr std::size_t kLongestAnswer = 1000;
  std::string line;
  if (LineReader(console_, kLongestAnswer).Next(line) != LineReader::Outcome::kLine) return BoxAnswer::kNo;
  while (!line.empty() && (line.back() == '\r' || line.back() == ' ')) line.pop_back();
  const std::string answer = Lower(TrimBlanks(line));
  return answer == "y" || answer == "yes" ? BoxAnswer::kYes : BoxAnswer::kNo;
}

}  // namespace quenlar
