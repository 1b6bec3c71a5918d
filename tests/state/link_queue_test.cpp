#include "state/link_queue.h"

#include <algorithm>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "state/get_host.h"

namespace quenlar {
namespace {

// The same promises, kept by going through all records each time.
struct PlainQueue {
  std::vector<std::pair<std::string, std::int16_t>> records;
  std::uint32_t next = 0;
  std::vector<std::uint32_t> in_flight;

  bool AddIfNew(const std::string& url, std::int16_t number) {
    for (const auto& record : records) {
      if (record.first == url) return false;
    }
    records.emplace_back(url, number);
    return true;
  }
  bool AddIfNewHost(const std::string& url, std::int16_t number) {
    for (const auto& record : records) {
      if (GetHost(record.first) == GetHost(url)) return false;
    }
    records.emplace_back(url, number);
    return true;
  }
  void RestartInFlight() {
    std::vector<std::pair<std::string, std::int16_t>> again;
    for (auto i = in_flight.rbegin(); i != in_flight.rend(); ++i) {
      again.insert(again.begin(), records[*i]);
      records.erase(records.begin() + *i);
    }
    next -= static_cast<std::uint32_t>(again.size());
    records.insert(records.begin() + next, again.begin(), again.end());
    in_flight.clear();
  }
};

void ExpectEqual(const LinkQueue& queue, const PlainQueue& plain) {
  ASSERT_EQ(queue.Count(), plain.records.size());
  for (std::uint32_t i = 0; i < queue.Count(); ++i) {
    ASSERT_EQ(queue.At(i).URL, plain.records[i].first);
    ASSERT_EQ(queue.At(i).number, plain.records[i].second);
  }
  ASSERT_EQ(queue.Next(), plain.next);
  ASSERT_EQ(queue.InFlight(), plain.in_flight);
  ASSERT_EQ(queue.HasUnvisited(), plain.next < plain.records.size() || !plain.in_flight.empty());
}

void OneStep(LinkQueue& queue, PlainQueue& plain, std::mt19937& random) {
  static const char* const kSchemes[] = {"http://", "", "HTTP://", "https://"};
  const std::string url = kSchemes[random() % 4] + std::string(1, static_cast<char>('a' + random() % 5)) +
                          (random() % 2 == 0 ? ".de" : ".DE") +
                          (random() % 3 == 0 ? "" : "/" + std::to_string(random() % 9));
  const auto number = static_cast<std::int16_t>(random() % 3);
  switch (random() % 12) {
    case 0:
    case 1:
    case 2:
    case 3:
      ASSERT_EQ(queue.AddIfNew(url, number), plain.AddIfNew(url, number)) << url;
      break;
    case 4:
    case 5:
    case 6:
      ASSERT_EQ(queue.AddIfNewHost(url, number), plain.AddIfNewHost(url, number)) << url;
      break;
    case 7:
    case 8:
      if (queue.Next() == queue.Count()) break;
      ASSERT_EQ(queue.StartNext(), plain.next);
      plain.in_flight.push_back(plain.next++);
      break;
    case 9: {
      const std::uint32_t index = queue.Count() == 0 ? 0 : static_cast<std::uint32_t>(random() % queue.Count());
      queue.Finish(index);
      std::erase(plain.in_flight, index);
      break;
    }
    case 10:
      queue.Reverse();
      std::reverse(plain.records.begin() + plain.next, plain.records.end());
      break;
    default:
      queue.RestartInFlight();
      plain.RestartInFlight();
  }
}

TEST(LinkQueue, AnswersAsALinearScanDoes) {
  for (unsigned seed = 0; seed < 300; ++seed) {
    std::mt19937 random(seed);
    LinkQueue queue;
    PlainQueue plain;
    for (int step = 0; step < 120; ++step) {
      OneStep(queue, plain, random);
      if (HasFatalFailure()) FAIL() << "seed " << seed << ", step " << step;
    }
    ExpectEqual(queue, plain);
    if (HasFatalFailure()) FAIL() << "seed " << seed;
  }
}

TEST(LinkQueue, KeepsViewsValidWhileItGrows) {
  LinkQueue queue;
  queue.AddIfNew("http://first/");
  const std::string_view first = queue.At(0).URL;
  for (int i = 0; i < 100000; ++i) queue.AddIfNew("http://h/" + std::to_string(i));
  EXPECT_EQ(first, "http://first/");
  EXPECT_EQ(first.data(), queue.At(0).URL.data());
  EXPECT_EQ(queue.Count(), 100001u);
}

TEST(LinkQueue, TellsLinksApartThatDifferInOneByte) {
  LinkQueue queue;
  const std::string with_zero("a\0b", 3);
  EXPECT_TRUE(queue.AddIfNew("a"));
  EXPECT_TRUE(queue.AddIfNew("A"));
  EXPECT_TRUE(queue.AddIfNew(with_zero));
  EXPECT_TRUE(queue.AddIfNew(std::string("a\0", 2)));
  EXPECT_TRUE(queue.AddIfNew(""));
  EXPECT_FALSE(queue.AddIfNew(""));
  EXPECT_FALSE(queue.AddIfNew(with_zero));
  EXPECT_EQ(queue.At(2).URL, with_zero);
}

TEST(LinkQueue, KeepsALinkLongerThanABlock) {
  LinkQueue queue;
  const std::string longer(3 << 20, 'x');
  EXPECT_TRUE(queue.AddIfNew("http://h/"));
  EXPECT_TRUE(queue.AddIfNew(longer));
  EXPECT_TRUE(queue.AddIfNew("http://i/"));
  EXPECT_FALSE(queue.AddIfNew(longer));
  EXPECT_EQ(queue.At(1).URL, longer);
  EXPECT_EQ(queue.At(0).URL, "http://h/");
}

TEST(LinkQueue, RemovesUnwantedRecordsThatAreStillToBeVisited) {
  const auto unwanted = [](std::string_view url) { return url.starts_with("bad"); };
  LinkQueue queue;
  for (const char* url : {"bad done", "a", "bad flying", "b", "bad waiting", "c"}) queue.AddIfNew(url);
  for (int i = 0; i < 4; ++i) (void)queue.StartNext();
  for (const std::uint32_t done : {0u, 1u}) queue.Finish(done);
  queue.RemoveUnvisited(unwanted);
  ASSERT_EQ(queue.Count(), 4u);
  EXPECT_EQ(queue.Next(), 2u);
  EXPECT_EQ(queue.At(0).URL, "bad done") << "it is not visited or saved any more, but not queued again either";
  EXPECT_EQ(queue.At(2).URL, "b");
  EXPECT_EQ(queue.At(3).URL, "c");
  EXPECT_FALSE(queue.AddIfNew("c"));
  EXPECT_TRUE(queue.AddIfNew("bad waiting"));
}

TEST(LinkQueue, KeepsWhatIsInFlightWhenNothingOfItIsUnwanted) {
  LinkQueue queue;
  for (const char* url : {"a", "bad"}) queue.AddIfNew(url);
  (void)queue.StartNext();
  queue.RemoveUnvisited([](std::string_view url) { return url == "bad"; });
  EXPECT_EQ(queue.Count(), 1u);
  EXPECT_EQ(queue.InFlight(), std::vector<std::uint32_t>{0});
}

TEST(LinkQueue, IsEmptyAfterClearAndGivesItsMemoryBack) {
  LinkQueue queue;
  for (int i = 0; i < 10000; ++i) queue.AddIfNew("http://h/" + std::to_string(i));
  queue.StartNext();
  queue.Clear();
  EXPECT_EQ(queue.Count(), 0u);
  EXPECT_EQ(queue.Next(), 0u);
  EXPECT_FALSE(queue.HasUnvisited());
  EXPECT_LT(queue.MemoryBytes(), 100u);
  EXPECT_TRUE(queue.AddIfNew("http://h/1"));
}

TEST(LinkQueue, TakesLittleMoreThanItsTexts) {
  for (const bool by_host : {false, true}) {
    LinkQueue queue;
    std::size_t text = 0;
    for (int i = 0; i < 200000; ++i) {
      const std::string url = "http://www.site" + std::to_string(i) + ".example/folder/page.html";
      text += url.size();
      by_host ? queue.AddIfNewHost(url) : queue.AddIfNew(url);
    }
    EXPECT_EQ(queue.Count(), 200000u);
    EXPECT_LT(static_cast<double>(queue.MemoryBytes() - text) / 200000, 45) << by_host;
  }
}

}  // namespace
}  // namespace quenlar
