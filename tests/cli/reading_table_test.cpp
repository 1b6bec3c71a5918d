// The table of docs/reading.md that compares the classic analysis with the page reader: both answer its pages.
#include <cstdlib>
#include <filesystem>
#include <fstream>

#include <gtest/gtest.h>

#include "base/ascii.h"
#include "cli/json_text.h"
#include "command_system.h"

namespace quenlar {
namespace {

const std::string kHost = "http://www.firma.de";

Json Answer(const Json& request) {
  CommandSystem system;
  system.streams.input = JsonLine(request);
  EXPECT_EQ(system.Run({"analyze", "--jsonl"}), 0);
  return Json::parse(system.output());
}

void Append(std::string& list, const std::string& item) { list += (list.empty() ? "" : ", ") + item; }

// A link without the host of the page.
std::string Shown(const std::string& url) { return url.starts_with(kHost) ? url.substr(kHost.size()) : url; }

std::string Classic(const std::string& page) {
  const Json answer = Answer({{"name", "M1" + kHost + "/"}, {"text", page}});
  std::string found;
  for (const Json& record : answer["addresses"]) Append(found, record["Address"].get<std::string>());
  for (const Json& link : answer["links"]) Append(found, Shown(link["URL"].get<std::string>()));
  return found.empty() ? "nothing" : found;
}

std::string Reader(const std::string& page) {
  const Json answer = Answer({{"read", page}, {"page", kHost + "/"}});
  std::string found;
  for (const Json& record : answer["addresses"]) {
    Append(found, record["address"].get<std::string>() + " (" + record["place"].get<std::string>() + ")");
  }
  if (answer["protected"] != 0) Append(found, "1 protected");
  for (const Json& link : answer["links"]) Append(found, Shown(link["url"].get<std::string>()));
  return found.empty() ? "nothing" : found;
}

std::vector<std::string> Rows() {
  const char* const tests = std::getenv("QUENLAR_TEST_DATA");
  std::ifstream page(std::filesystem::path(tests == nullptr ? "tests" : tests).parent_path() / "docs" / "reading.md");
  std::vector<std::string> rows;
  for (std::string line; std::getline(page, line);) {
    if (line.starts_with("| `")) rows.push_back(line);
  }
  return rows;
}

TEST(ReadingTable, SaysWhatBothSidesFind) {
  const std::vector<std::string> rows = Rows();
  EXPECT_GE(rows.size(), 20u);
  for (const std::string& row : rows) {
    const std::vector<std::string_view> cells = Split(row, " | ");
    ASSERT_EQ(cells.size(), 4u) << row;
    const std::string page(cells[0].substr(3, cells[0].size() - 4));
    EXPECT_EQ(Classic(page), cells[1]) << page;
    EXPECT_EQ(Reader(page), cells[2]) << page;
  }
}

}  // namespace
}  // namespace quenlar
