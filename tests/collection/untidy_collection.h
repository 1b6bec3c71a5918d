// A collection whose database has split and filled up its pages in such an order that deleted addresses leave pieces
// behind, which only writing the file anew takes away.
#pragma once

#include <random>
#include <set>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "collection/scratch_collection.h"

namespace quenlar {

// Puts 1,200 pages in, with a dozen addresses each, and commits them. Gives the addresses that are to go.
inline std::set<std::string, std::less<>> FillUntidily(Collection& collection) {
  std::mt19937 random(9);  // of the first ten seeds two leave such pieces
  std::vector<std::string> unwanted;
  for (int page = 0; page < 1200; ++page) {
    std::vector<std::string> addresses;
    for (int i = 0; i < 10; ++i) {
      std::string name(12 + random() % 30, 'a');
      for (char& c : name) c = static_cast<char>('a' + random() % 10);
      addresses.push_back(name + std::to_string(page * 10 + i) + "@firma.de");
    }
    unwanted.push_back(addresses[random() % 10]);
    PageEnd end;
    end.title = page % 3 == 0 ? "By " + unwanted[random() % unwanted.size()] : "A page";
    addresses.push_back(unwanted[random() % unwanted.size()]);
    std::vector<SeenAddress> seen;
    for (const std::string& address : addresses) seen.push_back({address, address, AddressPlace::kText});
    const Url url = UrlOf("https://www.firma.de/" + std::to_string(page));
    const auto offered = collection.Offer({url, "example.org"});
    EXPECT_TRUE(offered.ok());
    EXPECT_TRUE(collection.End(offered.value().host, offered.value().page, end, seen, 1000).ok());
    if (page % 50 == 0 || page == 1199) {
      EXPECT_TRUE(collection.Commit().ok());
    }
  }
  return {unwanted.begin(), unwanted.end()};
}

}  // namespace quenlar
