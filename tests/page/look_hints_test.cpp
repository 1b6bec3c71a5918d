// The names of attributes that tell how an element is shown are found wherever they stand.
#include "page/look_hints.h"

#include <algorithm>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace quenlar {
namespace {

TEST(LookHints, BothNamesAreFoundAtEveryPlace) {
  for (const char* const name : {"hidden", "style", "HIDDEN=", "Style>", "style/", "hidden\n"}) {
    for (std::size_t before = 0; before < 80; ++before) {
      const std::string page = std::string(before, 'd') + name;
      for (const std::size_t behind : {0u, 1u, 40u}) {
        const std::string whole = page + std::string(behind, behind == 1 ? ' ' : '=');
        EXPECT_EQ(LookHints(whole).Next(0, whole.size()), before) << whole;
      }
    }
  }
}

TEST(LookHints, LongerWordsAreNot) {
  const std::string page = "styles hiddenly stylesheet, unhidden ways, type, sty hidde" + std::string(100, ' ');
  EXPECT_EQ(LookHints(page).Next(0, page.find("unhidden")), page.find("unhidden") + 2);
  const std::string other = "styles hiddenly stylesheet, type, sty hidde" + std::string(100, ' ');
  EXPECT_EQ(LookHints(other).Next(0, other.size()), other.size());
}

std::size_t Slowly(const std::string& page, std::size_t begin, std::size_t limit) {
  for (std::size_t at = begin; at < std::min(limit, page.size()); ++at) {
    for (const std::string word : {"hidden", "style"}) {
      const std::size_t end = at + word.size();
      if (page.compare(at, word.size(), word) != 0) continue;
      if (end == page.size() || std::string(" =").find(page[end]) != std::string::npos) return at;
    }
  }
  return limit;
}

TEST(LookHints, TheNextOneIsToldAtRandom) {
  std::mt19937 random(20261124);
  const std::vector<std::string> pieces = {" hidden ", " style=", "dd", "ty", "hid", "den", " ", "style", "x"};
  for (int round = 0; round < 500; ++round) {
    std::string page;
    for (int i = 0; i < 300; ++i) page += random() % 20 == 0 ? pieces[random() % pieces.size()] : "word ";
    LookHints hints(page);
    for (std::size_t begin = 0; begin < page.size(); begin += 1 + random() % 200) {
      const std::size_t limit = begin + random() % 300;
      EXPECT_EQ(std::min(hints.Next(begin, limit), limit), Slowly(page, begin, limit));
    }
  }
}

}  // namespace
}  // namespace quenlar
