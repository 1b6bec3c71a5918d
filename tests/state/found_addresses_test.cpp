#include "state/found_addresses.h"

#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "base/ascii.h"

namespace quenlar {
namespace {

struct PlainRecord {
  std::string url, address, title;
  bool tag_only;
};

bool PlainContains(const std::vector<PlainRecord>& records, const std::string& address) {
  for (const PlainRecord& record : records) {
    if (Lower(record.address) == Lower(address)) return true;
  }
  return false;
}

void ExpectEqual(const FoundAddresses& found, const std::vector<PlainRecord>& plain) {
  ASSERT_EQ(found.Count(), plain.size());
  for (std::uint32_t i = 0; i < found.Count(); ++i) {
    const FoundAddress record = found.At(i);
    ASSERT_EQ(record.URL, plain[i].url);
    ASSERT_EQ(record.Address, plain[i].address);
    ASSERT_EQ(record.Title, plain[i].title);
    ASSERT_EQ(record.TagOnly, plain[i].tag_only);
  }
}

TEST(FoundAddresses, AnswerAsALinearScanDoes) {
  for (unsigned seed = 0; seed < 200; ++seed) {
    std::mt19937 random(seed);
    FoundAddresses found;
    std::vector<PlainRecord> plain;
    std::string url = "http://h/0", title = "t0";
    FoundAddresses::PageTexts page{url, title};
    for (int step = 0; step < 200; ++step) {
      std::string address(1 + random() % 3, 'a');
      for (char& c : address) c = "abABz@[`{\xC4\xE4"[random() % 11];
      const bool tag_only = random() % 2 == 0;
      if (random() % 8 == 0) {
        url = "http://h/" + std::to_string(random() % 3);
        title = "t" + std::to_string(random() % 3);
        page = {url, title};
      }
      if (random() % 3 == 0) {
        found.Add({url, address, title, tag_only});
        plain.push_back({url, address, title, tag_only});
      } else {
        const bool is_new = !PlainContains(plain, address);
        ASSERT_EQ(found.Contains(address), !is_new);
        ASSERT_EQ(found.AddIfNew(page, address, tag_only), is_new);
        if (is_new) plain.push_back({url, address, title, tag_only});
      }
    }
    ExpectEqual(found, plain);
    if (HasFatalFailure()) FAIL() << "seed " << seed;
  }
}

TEST(FoundAddresses, KeepViewsValidWhileTheTableGrows) {
  FoundAddresses found;
  found.Add({"http://h/", "first@x.de", "A title", true});
  const FoundAddress first = found.At(0);
  for (int i = 0; i < 100000; ++i) found.Add({"http://h/", "p" + std::to_string(i) + "@x.de", "", false});
  EXPECT_EQ(first.Address, "first@x.de");
  EXPECT_EQ(first.Title, "A title");
  EXPECT_TRUE(found.At(0).TagOnly);
}

TEST(FoundAddresses, AreEmptyAfterClearAlsoForAPageThatGoesOn) {
  FoundAddresses found;
  const std::string url = "http://h/page", title = "A title";
  FoundAddresses::PageTexts page{url, title};
  EXPECT_TRUE(found.AddIfNew(page, "a@x.de", false));
  found.Clear();
  EXPECT_EQ(found.Count(), 0u);
  EXPECT_FALSE(found.Contains("a@x.de"));
  EXPECT_LT(found.MemoryBytes(), 100u);
  EXPECT_TRUE(found.AddIfNew(page, "b@x.de", false));  // a harvest whose table was emptied inside its pump
  EXPECT_EQ(found.At(0).URL, url);
  EXPECT_EQ(found.At(0).Title, title);
}

TEST(FoundAddresses, LoseWhatIsUnwantedAndKeepTheRestAsItIs) {
  class Wanted final : public AddressFilter {
   public:
    [[nodiscard]] bool Keeps(std::string_view address) override {
      return Lower(address).find('b') == std::string::npos;
    }
  } wanted;
  FoundAddresses found;
  std::vector<PlainRecord> plain;
  const std::string url = "http://h/page", title = "A title";
  FoundAddresses::PageTexts page{url, title};
  std::mt19937 random(1);
  const auto add = [&] {
    std::string address(1 + random() % 6, 'a');
    for (char& c : address) c = "abABcdefgh"[random() % 10];
    const bool tag_only = random() % 2 == 0;
    if (random() % 5 == 0) {
      found.Add({"http://h/other", address, "", tag_only});  // perhaps once more
      plain.push_back({"http://h/other", address, "", tag_only});
    } else if (found.AddIfNew(page, address, tag_only)) {
      plain.push_back({url, address, title, tag_only});
    }
  };
  for (int round = 0; round < 20; ++round) {
    for (int i = 0; i < 500; ++i) add();
    const std::size_t unwanted =
        std::erase_if(plain, [&](const auto& record) { return !wanted.Keeps(record.address); });
    EXPECT_GT(unwanted, 0u);
    EXPECT_EQ(found.RemoveUnwanted(wanted), unwanted);
    ExpectEqual(found, plain);
    EXPECT_FALSE(found.Contains("bad"));
    for (const PlainRecord& record : plain) ASSERT_TRUE(found.Contains(record.address));
  }
  EXPECT_EQ(found.RemoveUnwanted(wanted), 0u);
}

TEST(FoundAddresses, ShareTheTextsOfAPage) {
  FoundAddresses found;
  const std::string url(1000, 'u'), title(1000, 't');
  FoundAddresses::PageTexts page{url, title};
  for (int i = 0; i < 10000; ++i) found.AddIfNew(page, "p" + std::to_string(i) + "@x.de", false);
  for (int i = 0; i < 10000; ++i) found.Add({url, "q" + std::to_string(i) + "@x.de", title, false});
  EXPECT_LT(found.MemoryBytes() / 20000, 70u);
}

TEST(FoundAddresses, CleanTheTextsOfTheirPages) {
  FoundAddresses found;
  found.Add({"http://h/?bad", "a@x.de", "One", false});
  found.Add({"http://h/", "b@x.de", "Two bad", true});
  const auto clean = [](std::string_view text) { return std::string(text.substr(0, text.find("bad"))); };
  EXPECT_TRUE(found.CleanPages(clean));
  EXPECT_EQ(found.At(0).URL, "http://h/?");
  EXPECT_EQ(found.At(0).Title, "One");
  EXPECT_EQ(found.At(1).Title, "Two ");
  EXPECT_EQ(found.At(1).Address, "b@x.de");
  EXPECT_FALSE(found.CleanPages(clean));
}

TEST(FoundAddresses, KeepNothingOfAPageWithoutNewAddresses) {
  FoundAddresses found;
  found.Add({"http://h/", "a@x.de", "", false});
  const std::size_t before = found.MemoryBytes();
  const std::string url(100000, 'u');
  FoundAddresses::PageTexts page{url, url};
  EXPECT_FALSE(found.AddIfNew(page, "A@X.de", false));
  EXPECT_EQ(found.MemoryBytes(), before);
}

TEST(FoundAddresses, StayFastWithOneAddressManyTimes) {
  FoundAddresses found;
  for (int i = 0; i < 300000; ++i) found.Add({"http://h/", "same@x.de", "", false});  // quadratic would never end
  EXPECT_EQ(found.Count(), 300000u);
}

}  // namespace
}  // namespace quenlar
