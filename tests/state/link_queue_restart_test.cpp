#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "state/link_queue.h"

namespace quenlar {
namespace {

LinkQueue QueueOf(const std::vector<std::string>& urls) {
  LinkQueue queue;
  for (const std::string& url : urls) queue.AddIfNew(url);
  return queue;
}

std::vector<std::string> Urls(const LinkQueue& queue) {
  std::vector<std::string> urls;
  for (std::uint32_t i = 0; i < queue.Count(); ++i) urls.emplace_back(queue.At(i).URL);
  return urls;
}

TEST(LinkQueue, PutsUnfinishedRecordsBeforeTheNextOneWhenTheyAreRestarted) {
  LinkQueue queue = QueueOf({"a", "b", "c", "d", "e"});
  for (int i = 0; i < 4; ++i) queue.StartNext();
  queue.Finish(0);
  queue.Finish(2);
  queue.RestartInFlight();
  EXPECT_EQ(Urls(queue), (std::vector<std::string>{"a", "c", "b", "d", "e"}));
  EXPECT_EQ(queue.Next(), 2u);
  EXPECT_TRUE(queue.InFlight().empty());
  EXPECT_FALSE(queue.AddIfNew("b"));
}

TEST(LinkQueue, StaysAsItIsWhenNothingIsThereToRestart) {
  LinkQueue queue = QueueOf({"a", "b"});
  queue.Finish(queue.StartNext());
  queue.RestartInFlight();
  EXPECT_EQ(queue.Next(), 1u);
  EXPECT_EQ(Urls(queue), (std::vector<std::string>{"a", "b"}));
}

TEST(LinkQueue, ReversesOnlyWhatHasNotBeenStarted) {
  LinkQueue queue = QueueOf({"a", "b", "c"});
  queue.Reverse();
  EXPECT_EQ(Urls(queue), (std::vector<std::string>{"c", "b", "a"}));
  queue.StartNext();
  queue.Reverse();
  EXPECT_EQ(Urls(queue), (std::vector<std::string>{"c", "a", "b"}));
}

}  // namespace
}  // namespace quenlar
