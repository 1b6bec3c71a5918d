#include "web/tag_scanner.h"

#include <bit>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace quenlar {
namespace {

struct Seen {
  std::vector<std::pair<std::size_t, std::size_t>> wanted;
  std::size_t tags = 0;
  bool operator==(const Seen&) const = default;
};

// One "<" and one ">" after the other.
Seen Plain(const std::string& page) {
  Seen seen;
  for (std::size_t open = page.find('<'); open != page.npos;) {
    ++seen.tags;
    const std::size_t close = page.find('>', open);
    if (close == page.npos) break;
    if (std::string("aAfF ").find(page[open + 1]) != std::string::npos) seen.wanted.emplace_back(open, close);
    open = page.find('<', close);
  }
  return seen;
}

Seen Scanned(const std::string& page) {
  Seen seen;
  TagScanner scanner(page);
  const auto passed = [&](std::size_t, std::uint64_t tags) {
    seen.tags += static_cast<std::size_t>(std::popcount(tags));
    return true;
  };
  for (TagScanner::Tag tag{}; scanner.Next(tag, passed);) seen.wanted.emplace_back(tag.open, tag.close);
  return seen;
}

TEST(TagScanner, FindsTheTagsOfAPlainSearch) {
  std::mt19937 random(1);
  for (int round = 0; round < 4000; ++round) {
    // Brackets as thick as can be, and as rare as one in two blocks.
    const unsigned rareness = 1u << random() % 7;
    std::string page(random() % 400, '.');
    for (char& c : page) c = random() % rareness == 0 ? "<><>aF x"[random() % 8] : '.';
    ASSERT_EQ(Scanned(page), Plain(page)) << page;
  }
}

TEST(TagScanner, EndsWhereItIsToldTo) {
  const std::string page = "<p><b><a x></a>" + std::string(200, '.') + "<i><a y>";
  for (int stop_after = 0; stop_after < 6; ++stop_after) {
    TagScanner scanner(page);
    int told = 0;
    std::size_t first_told = 0;
    const auto passed = [&](std::size_t first, std::uint64_t tags) {
      first_told = first;
      told += std::popcount(tags);
      return told <= stop_after;
    };
    TagScanner::Tag tag{};
    int returned = 0;
    while (scanner.Next(tag, passed)) ++returned;
    EXPECT_EQ(returned, stop_after < 3 ? 0 : 1);
    EXPECT_EQ(page[first_told], '<');
  }
}

}  // namespace
}  // namespace quenlar
