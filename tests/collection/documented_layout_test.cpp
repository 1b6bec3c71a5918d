// docs/collections.md against a real file: every table and column stands in it, and its questions are answered.
#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <map>
#include <sstream>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "base/ascii.h"
#include "collection/scratch_collection.h"

namespace quenlar {
namespace {

using testing::Contains;

std::string TextOfPage() {
  std::ifstream stream(std::string(std::getenv("QUENLAR_TEST_DATA")) + "/../docs/collections.md", std::ios::binary);
  std::ostringstream text;
  text << stream.rdbuf();
  return text.str();
}

// What stands between backticks.
std::vector<std::string> Quoted(std::string_view text) {
  std::vector<std::string> words;
  const std::vector<std::string_view> parts = Split(text, "`");
  for (std::size_t i = 1; i < parts.size(); i += 2) words.emplace_back(parts[i]);
  return words;
}

// The words in backticks behind the name of each table. Those of `pages` have a table of their own in the page.
std::map<std::string, std::vector<std::string>> DocumentedTables(std::string_view page) {
  std::map<std::string, std::vector<std::string>> tables;
  bool of_pages = false;
  for (const std::string_view line : Split(page, "\n")) {
    if (line.starts_with("`pages` has these columns")) of_pages = true;
    if (line.starts_with("## ")) of_pages = false;
    if (!line.starts_with("| `")) continue;
    const std::vector<std::string> words = Quoted(line);
    std::vector<std::string>& columns = tables[of_pages ? "pages" : words.front()];
    columns.insert(columns.end(), words.begin() + (of_pages ? 0 : 1), words.end());
  }
  return tables;
}

class DocumentedLayoutTest : public CollectionTest {
 protected:
  void SetUp() override {
    const OfferedPage home = Offer("https://www.example.org/");
    PageEnd end;
    end.state = PageState::kRead;
    end.status = 200;
    End(home, end, {{"info@example.org", "info@example.org", AddressPlace::kText}}, 100);
    ASSERT_TRUE(collection_->Commit().ok());
  }
};

TEST_F(DocumentedLayoutTest, EveryTableAndColumnIsDocumented) {
  const auto documented = DocumentedTables(TextOfPage());
  std::size_t tables = 0;
  for (const std::string& table : Query("SELECT name FROM sqlite_schema WHERE type = 'table'")) {
    ASSERT_TRUE(documented.contains(table)) << table;
    ++tables;
    for (const std::string& column : Query(("SELECT name FROM pragma_table_info('" + table + "')").c_str())) {
      EXPECT_TRUE(column == "id" || std::count(documented.at(table).begin(), documented.at(table).end(), column) > 0)
          << table << "." << column;
    }
  }
  EXPECT_EQ(tables, documented.size()) << "the page names a table that is not there";
  EXPECT_THAT(Query("PRAGMA user_version"), Contains("1"));
  EXPECT_NE(TextOfPage().find("`PRAGMA user_version` is its version, now 1."), std::string::npos);
}

TEST_F(DocumentedLayoutTest, EveryQuestionIsAnswered) {
  const std::string page = TextOfPage();
  std::vector<std::string> questions;
  bool inside = false;
  for (std::string_view line : Split(std::string_view(page).substr(page.find("## Ten questions")), "\n")) {
    const bool indented = line.starts_with("    ");
    if (indented && !inside) questions.emplace_back();
    if (indented) questions.back() += std::string(line) + "\n";
    inside = indented;
  }
  ASSERT_EQ(questions.size(), 10u);
  EXPECT_EQ(Query(questions[0].c_str()), std::vector<std::string>{"info@example.org"});
  EXPECT_EQ(Query(questions[2].c_str()), std::vector<std::string>{"https://www.example.org/"});
  for (const std::string& question : questions) {
    SCOPED_TRACE(question);
    (void)Query(question.c_str());  // fails the test where SQLite does not take it
  }
}

}  // namespace
}  // namespace quenlar
