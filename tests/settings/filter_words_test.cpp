#include "settings/filter_words.h"

#include <random>

#include <gmock/gmock.h>

#include "settings/filter_expression.h"

namespace quenlar {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using Words = std::vector<std::string>;

class FilterWordsTest : public testing::Test {
 protected:
  Words Remove(Words words) {
    settings.RemoveFilterOn = 1;
    filter.RemoveFilterWords = std::move(words);
    return filter.BuildFilterPatterns();
  }
  Words Extract(Words words) {
    settings.ExtractFilterOn = 1;
    filter.ExtractFilterWords = std::move(words);
    return filter.BuildFilterPatterns();
  }

  Settings settings;
  FilterWords filter{settings};
};

TEST_F(FilterWordsTest, WordsBecomeAnAlternationInWhichAStarIsAnyText) {
  struct Row {
    Words words;
    const char* pattern;
  };
  const Row rows[] = {
      {{}, ""},
      {{"cat", "*dog*x"}, "(cat)|(dog[\\s\\S]*x)"},
      {{"cat", "dog"}, "(cat)|(dog)"},
      {{"**a**"}, "([\\s\\S]*a[\\s\\S]*)"},
      {{"", "x"}, "()|(x)"},
      {{"a.b+c"}, "(a.b+c)"},
      {{"***"}, "([\\s\\S]*)"},
  };
  for (const Row& row : rows) {
    EXPECT_THAT(Remove(row.words), IsEmpty());
    EXPECT_EQ(filter.RemoveFilterPattern, row.pattern);
    EXPECT_EQ(filter.ExtractFilterPattern, "");
  }
}

TEST_F(FilterWordsTest, SingleStarBecomesTheEmptyWordAndMatchesEverything) {
  EXPECT_THAT(Remove({"*"}), IsEmpty());
  EXPECT_EQ(filter.RemoveFilterPattern, "()");
  EXPECT_FALSE(filter.Keeps("a@x.de"));
  Remove({});
  Extract({"*"});
  EXPECT_TRUE(filter.Keeps("a@x.de"));
}

TEST_F(FilterWordsTest, RemoveFilterDropsWhatMatchesWhateverTheLetterCase) {
  Remove({"spam", "no*reply"});
  EXPECT_FALSE(filter.Keeps("SPAM@x.de"));
  EXPECT_FALSE(filter.Keeps("no.Reply@x.de"));
  EXPECT_TRUE(filter.Keeps("someone@x.de"));
}

TEST_F(FilterWordsTest, ExtractFilterKeepsOnlyWhatMatches) {
  Extract({"\\.de$"});
  EXPECT_TRUE(filter.Keeps("a@x.de"));
  EXPECT_FALSE(filter.Keeps("a@x.de.com"));
}

TEST_F(FilterWordsTest, RemoveFilterIsAskedFirstAndBothMustAgree) {
  Remove({"bad"});
  Extract({"good"});
  EXPECT_TRUE(filter.Keeps("good@x.de"));
  EXPECT_FALSE(filter.Keeps("good@bad.de"));
  EXPECT_FALSE(filter.Keeps("other@x.de"));
}

TEST_F(FilterWordsTest, OnlyASwitchOfExactlyOneIsOn) {
  Remove({"a"});
  Extract({"b"});
  for (const int value : {0, -1, 2, 32767}) {
    settings.RemoveFilterOn = settings.ExtractFilterOn = static_cast<std::int16_t>(value);
    EXPECT_TRUE(filter.Keeps("a@x.com")) << value;
  }
}

TEST_F(FilterWordsTest, TheTextChangesWithWhatIsKept) {
  EXPECT_EQ(filter.Text(), "");
  EXPECT_THAT(Remove({"a"}), IsEmpty());
  const std::string removes = filter.Text();
  EXPECT_THAT(removes, HasSubstr("remove"));
  EXPECT_THAT(Extract({"a"}), IsEmpty());
  EXPECT_NE(filter.Text(), removes);
  settings.RemoveFilterOn = settings.ExtractFilterOn = 0;
  EXPECT_EQ(filter.Text(), "");
}

TEST_F(FilterWordsTest, SwitchWithoutWordsDoesNothing) {
  Remove({});
  Extract({});
  EXPECT_TRUE(filter.Keeps("a@x.com"));
}

TEST_F(FilterWordsTest, WordsAreRegularExpressionsAsTheyStand) {
  const std::pair<const char*, const char*> matching[] = {{"a.c", "abc@x.de"},
                                                          {"\\bcat\\b", "the-cat@x.de"},
                                                          {"^info", "info@x.de"},
                                                          {"[0-9]{3}", "a123@x.de"},
                                                          {"(ab)+c", "ababc@x.de"},
                                                          {"a(?=@)", "a@x.de"},
                                                          {"x\\.(de|fr)", "a@x.fr"},
                                                          {"o{2}", "foo@x.de"},
                                                          {"\\w+@\\w+", "a@x.de"},
                                                          {"[^a-z@.]", "a1@x.de"},
                                                          {"(.)\\2", "abba@x.de"},
                                                          {"a+?b", "aab@x.de"},
                                                          {"m\xC3\xBCller", "m\xC3\xBCller@x.de"}};
  for (const auto& [word, address] : matching) {
    EXPECT_THAT(Remove({word}), IsEmpty()) << word;
    EXPECT_FALSE(filter.Keeps(address)) << word;
  }
  const std::pair<const char*, const char*> others[] = {
      {"\\bcat\\b", "concat@x.de"}, {"^info", "my.info@x.de"}, {"a(?!@)$", "a@x.de"}, {"x\\.de", "a@xyde.com"}};
  for (const auto& [word, address] : others) {
    EXPECT_THAT(Remove({word}), IsEmpty()) << word;
    EXPECT_TRUE(filter.Keeps(address)) << word;
  }
}

TEST_F(FilterWordsTest, BrokenPatternCountsAsNoMatchAndIsReportedOnceWhenItIsSet) {
  for (const char* word : {"(", ")", "[", "a(b", "+a", "(?", "x{2,1}", "a\\", "[z-a]", "(?R)"}) {
    const Words messages = Remove({word});
    ASSERT_EQ(messages.size(), 1u) << word;
    EXPECT_THAT(messages[0], HasSubstr("remove filter"));
    EXPECT_TRUE(messages[0].ends_with(" !")) << messages[0];
    EXPECT_TRUE(filter.Keeps("a(b@x.de")) << word;
  }
  Remove({});
  EXPECT_THAT(Extract({"("}), ElementsAre(HasSubstr("extract filter")));
  EXPECT_FALSE(filter.Keeps("a@x.de"));
}

TEST_F(FilterWordsTest, BrokenPatternLeavesTheOtherWordsAtWork) {
  EXPECT_THAT(Remove({"cat", "(", "dog"}), ElementsAre(HasSubstr("\"(\"")));
  EXPECT_FALSE(filter.Keeps("cat@x.de"));
  EXPECT_FALSE(filter.Keeps("dog@x.de"));
  EXPECT_TRUE(filter.Keeps("cow@x.de"));
  EXPECT_EQ(filter.RemoveFilterPattern, "(cat)|(()|(dog)");
}

// Without a limit of steps the next three would take years; that they come to their end is what they show.
TEST_F(FilterWordsTest, PatternThatBacktracksForEverCountsAsNoMatchAndIsReportedOnce) {
  Words reports;
  filter.OnStepLimit([&](const std::string& message) { reports.push_back(message); });
  const std::string address = std::string(200, 'a') + "@x.com";
  for (const char* word :
       {"(a+)+$", "(a|a)+$", "(a*)*b", "([a-z]+)*[0-9]", "(?=(a+)+$)b", "(((a{1,9}){1,9}){1,9}){1,9}b"}) {
    reports.clear();
    EXPECT_THAT(Remove({word}), IsEmpty()) << word;
    for (int i = 0; i < 20; ++i) EXPECT_TRUE(filter.Keeps(address)) << word;
    EXPECT_LE(reports.size(), 1u) << word;
  }
  reports.clear();
  EXPECT_THAT(Remove({"(a+)+$"}), IsEmpty());
  EXPECT_TRUE(filter.Keeps(address));
  EXPECT_TRUE(filter.Keeps(address));
  EXPECT_THAT(reports, ElementsAre(HasSubstr("remove filter")));
}

TEST_F(FilterWordsTest, PatternThatBacktracksForEverStillMatchesWhereItIsQuick) {
  Remove({"(a+)+$"});
  EXPECT_TRUE(filter.Keeps(std::string(200, 'a') + "@x.com"));
  EXPECT_FALSE(filter.Keeps("x@y.aaa"));
  EXPECT_TRUE(filter.Keeps(std::string(200, 'a') + "@x.com"));
}

TEST_F(FilterWordsTest, PatternThatBacktracksForEverLeavesThousandsOfOtherWordsAtWork) {
  Words words = {"(a+)+$"};
  for (int i = 0; i < 5000; ++i) words.push_back("word" + std::to_string(i) + "x");
  Remove(words);
  const std::string address = std::string(100, 'a') + "@word77x.com";
  EXPECT_FALSE(filter.Keeps(address));
  EXPECT_TRUE(filter.Keeps(std::string(100, 'a') + "@other.com"));
}

TEST_F(FilterWordsTest, LongAddressesAndLongPatternsStayWithinBounds) {
  const std::string address = std::string(1 << 20, 'a') + "@x.com";
  for (const char* word : {"(a+)+$", "a*a*a*q", "[ab]*[ac]*q", "(a|b|ab)*q"}) {
    Remove({word});
    EXPECT_TRUE(filter.Keeps(address)) << word;
  }
  Remove({"x.com"});
  EXPECT_FALSE(filter.Keeps(address));
  EXPECT_THAT(Remove({std::string(100'000, '(') + std::string(100'000, ')')}).size(), 1u);
  EXPECT_THAT(Remove({std::string(100'000, '[')}).size(), 1u);
  std::string optional;
  for (int i = 0; i < 50'000; ++i) optional += "a?";
  EXPECT_THAT(Remove({optional}), IsEmpty());
  (void)filter.Keeps("aaa@x.com");
}

TEST_F(FilterWordsTest, FiftyThousandWordsWork) {
  Words words;
  for (int i = 0; i < 50'000; ++i) words.push_back("somebody" + std::to_string(i) + "@x");
  EXPECT_THAT(Remove(words), IsEmpty());
  EXPECT_FALSE(filter.Keeps("somebody49999@x.de"));
  EXPECT_TRUE(filter.Keeps("somebody50000@x.de"));
}

TEST_F(FilterWordsTest, WordsFoundTogetherAreTheWordsFoundOneByOne) {
  std::mt19937 random(7);
  const std::string letters = "ab.@1*";
  const auto text = [&](std::size_t most) {
    std::string result;
    for (std::size_t n = random() % most + 1; n > 0; --n) result += letters[random() % (letters.size() - 1)];
    return result;
  };
  for (int round = 0; round < 200; ++round) {
    Words words;
    for (int i = 0; i < 4; ++i) words.push_back(text(4));
    ASSERT_THAT(Remove(words), IsEmpty());
    for (int i = 0; i < 10; ++i) {
      const std::string address = text(12);
      bool any = false;
      for (const std::string& word : words) {
        FilterWords alone(settings);
        alone.RemoveFilterWords = {word};
        ASSERT_THAT(alone.BuildFilterPatterns(), IsEmpty());
        any = any || !alone.Keeps(address);
      }
      ASSERT_EQ(filter.Keeps(address), !any) << filter.RemoveFilterPattern << " on " << address;
    }
  }
}

}  // namespace
}  // namespace quenlar
