// The same rows whatever the number of threads, and from any place on at which a portion has ended.
#include <string>

#include <gtest/gtest.h>

#include "harvest_world.h"
#include "warc_text.h"

namespace quenlar {
namespace {

class HarvestOrderTest : public testing::Test {
 protected:
  // Archives of some megabytes, sound and damaged, as bytes.
  static const std::vector<std::string>& Archives() {
    static const std::vector<std::string> archives = MakeArchives();
    return archives;
  }
  static std::vector<std::string> MakeArchives() {
    std::string plain, members, damaged, blocks;
    unsigned random = 1;
    for (int i = 0; i < 1000; ++i) {
      std::string body = "<p>p" + std::to_string(i) + "@firma.de<p>";
      const std::size_t size = i % 97 == 0 ? 200'000 : 2000;
      for (; body.size() < size; random = random * 1103515245u + 12345u) body += std::to_string(random) + " ";
      const std::string record = WarcText({.target = "http://www.firma.de/" + std::to_string(i)}, HttpText(body));
      plain += record;
      const std::string member = Deflated(record, 31, 1);
      members += member;
      damaged += i % 50 == 49 ? member.substr(0, member.size() / 2) : i % 70 == 1 ? member + "junk" : member;
    }
    for (std::size_t at = 0; at < plain.size(); at += 65280)
      blocks += Deflated(std::string_view(plain).substr(at, 65280), 31, 1);
    std::string torn = plain;
    torn.erase(torn.size() / 3, 3000);
    const std::string single = Deflated(plain, 31, 1);
    return {plain, members, damaged, blocks, single, torn, members + blocks + members, members + single + members};
  }
  HarvestWorld world_;
};

TEST_F(HarvestOrderTest, RowsAreTheSameWhateverTheNumberOfThreads) {
  for (const std::string& archive : Archives()) {
    const std::string rows = world_.Of(archive, 1);
    EXPECT_GT(world_.rows.size(), 900u);
    const auto reports = world_.reports;
    for (const std::size_t jobs : {2u, 4u}) {
      EXPECT_TRUE(world_.Of(archive, jobs) == rows) << jobs;
      EXPECT_EQ(world_.reports, reports);
    }
  }
}

TEST_F(HarvestOrderTest, ReadingGoesOnWhereAPortionHasEnded) {
  for (const std::string& archive : Archives()) {
    (void)world_.Of(archive, 1);
    const std::vector<std::string> all = world_.rows;
    const auto behind = world_.behind;
    const auto before = world_.rows_before;
    for (std::size_t i = 0; i < behind.size(); i += 1 + behind.size() / 5) {
      world_.places["/a"] = behind[i];
      (void)world_.Of(archive, 2);
      const std::vector<std::string> rest(all.begin() + static_cast<std::ptrdiff_t>(before[i]), all.end());
      EXPECT_TRUE(world_.rows == rest) << i << ": " << world_.rows.size() << " of " << rest.size();
    }
    world_.places.clear();
  }
}

TEST_F(HarvestOrderTest, ManyInputsComeInTheirOrder) {
  std::vector<std::string> inputs;
  std::string expected;
  world_.files.Put("/large", Archives()[1]);
  for (int i = 0; i < 300; ++i) {
    const std::string name = "/n" + std::to_string(i);
    world_.files.Put(name, "a" + std::to_string(i) + "@firma.de");
    inputs.push_back(name);
    if (i % 100 == 50) inputs.emplace_back("/large");
  }
  const std::string rows = world_.Run(inputs, 1);
  EXPECT_EQ(world_.rows.size(), 300u + 3 * 1000u);
  EXPECT_TRUE(world_.Run(inputs, 4) == rows);
}

TEST_F(HarvestOrderTest, AHarvestEndsWhenItsViewHasEnough) {
  world_.portions_until_stop = 2;
  for (const std::size_t jobs : {1u, 3u}) {
    (void)world_.Of(Archives()[1], jobs);
    EXPECT_EQ(world_.behind.size(), 2u);
  }
}

TEST_F(HarvestOrderTest, InputsThatAreKnownAreNotRead) {
  world_.files.Put("/b", "b@firma.de");
  world_.known = {"/a"};
  world_.files.Put("/a", "a@firma.de");
  EXPECT_EQ(world_.Run({"/a", "/b"}), "b@firma.de /b");
}

TEST_F(HarvestOrderTest, EndsAreToldInTheOrderOfTheInputs) {
  world_.files.Put("/large", Archives()[1]);
  world_.files.Put("/picture", std::string(2u << 20, '\0'));
  world_.files.Put("/known", "a@firma.de");
  world_.known = {"/known"};
  const auto kind = [](InputKind is) { return " " + std::to_string(static_cast<int>(is)) + " 0"; };
  for (const std::size_t jobs : {1u, 3u}) {
    (void)world_.Run({"/large", "/missing", "/known", "/picture", "/large"}, jobs);
    const std::vector<std::string> expected = {"/large" + kind(InputKind::kWarc), "/missing failed",
                                               "/known" + kind(InputKind::kEmpty), "/picture" + kind(InputKind::kOther),
                                               "/large" + kind(InputKind::kWarc)};
    EXPECT_EQ(world_.reports, expected) << jobs;
    EXPECT_EQ(world_.rows.size(), 2000u);
  }
}

}  // namespace
}  // namespace quenlar
