#include "run/crawl_case.h"

#include <sstream>

namespace quenlar {

std::vector<CrawlStep> ReadCrawlCase(const std::string& text) {
  std::vector<CrawlStep> steps;
  std::istringstream stream(text);
  std::string line;
  for (int number = 1; std::getline(stream, line); ++number) {
    if (line.starts_with("== ")) {
      steps.push_back({number, line.substr(3), {}});
    } else if (!steps.empty()) {
      steps.back().lines.push_back(line);
    }
  }
  for (CrawlStep& step : steps) {
    while (!step.lines.empty() && step.lines.back().empty()) step.lines.pop_back();
  }
  return steps;
}

}  // namespace quenlar
