#include "web/page_addresses.h"

#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace quenlar {
namespace {

using Place = PageAddresses::Place;

std::vector<std::string> Texts(const PageAddresses& addresses, const PageAddresses::List& list) {
  std::vector<std::string> texts;
  for (const std::uint32_t number : list) {
    const auto address = addresses.At(number);
    EXPECT_EQ(address.hash, TextHash(1).IgnoringCase(address.text));
    texts.emplace_back(address.text);
  }
  return texts;
}

TEST(PageAddresses, KeepTheFirstSpellingOfEachList) {
  PageAddresses addresses(TextHash(1));
  const auto all = [](std::string_view) { return true; };
  for (const char* address : {"B@x.de", "a@x.de", "A@X.DE", "c@x.de"})
    addresses.Add(Place::kBetweenTags, addresses.Ready(address), all);
  for (const char* address : {"t@x.de", "C@x.de", "T@x.de", "b@X.de"})
    addresses.Add(Place::kTag, addresses.Ready(address), all);
  for (const char* address : {"A@x.De", "m@x.de"}) addresses.Add(Place::kMailLink, addresses.Ready(address), all);
  EXPECT_EQ(Texts(addresses, addresses.TextList()), (std::vector<std::string>{"A@x.De", "m@x.de", "B@x.de", "c@x.de"}));
  EXPECT_EQ(Texts(addresses, addresses.TagList()), (std::vector<std::string>{"t@x.de"}));
}

TEST(PageAddresses, AskTheFilterForNewOnesOnlyAndTakeItsWord) {
  PageAddresses addresses(TextHash(1));
  std::vector<std::string> asked;
  const auto keeps = [&](std::string_view address) {
    asked.emplace_back(address);
    return address.front() != 's';
  };
  for (const char* address : {"s@x.de", "a@x.de", "A@x.de", "s@x.de"})
    addresses.Add(Place::kTag, addresses.Ready(address), keeps);
  addresses.Add(Place::kBetweenTags, addresses.Ready("a@x.de"), keeps);
  EXPECT_EQ(asked, (std::vector<std::string>{"s@x.de", "a@x.de", "s@x.de", "a@x.de"}));
  EXPECT_EQ(Texts(addresses, addresses.TextList()), std::vector<std::string>{"a@x.de"});
  EXPECT_EQ(Texts(addresses, addresses.TagList()), std::vector<std::string>{});
}

}  // namespace
}  // namespace quenlar
