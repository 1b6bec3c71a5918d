#include "engine/collections.h"

#include <gtest/gtest.h>

#include "support/in_memory_files.h"

namespace quenlar {
namespace {

Installation Home() {
  Installation installation;
  installation.program_folder = "/q";
  return installation;
}

TEST(Collections, AreNamedAsTheFilesOfAProject) {
  const struct {
    const char* start;
    const char* name;
  } kCases[] = {
      {"www.example.org", "example_org"},
      {"https://www.example.org/", "example_org"},
      {"http://shop.example.org/a.b/c?d.e", "shop_example_org"},
      {"127.0.0.1:8080", "127_0_0_1%3A8080"},
      {"red cars", "red_cars_de"},
      {"red_cars", "red_cars"},
  };
  for (const auto& [start, name] : kCases) EXPECT_EQ(CollectionName(start, "de", Home()), name) << start;
}

TEST(Collections, LieInTheDataFolderWhateverTheirName) {
  EXPECT_EQ(CollectionPath(Home(), "members"), "/q/data/members.sqlite");
  EXPECT_EQ(CollectionPath(Home(), "../../etc/x"), "/q/data/..%2F..%2Fetc%2Fx.sqlite");
}

TEST(Collections, AreTheDatabasesInTheDataFolder) {
  InMemoryFiles files;
  EXPECT_TRUE(CollectionNames(files, Home()).value().empty());
  files.AddFolder("/q/data");
  for (const char* const name : {"b.sqlite", "a.sqlite", "a.sqlite-wal", "a.dat", ".sqlite"}) {
    files.Put(std::string("/q/data/") + name, "");
  }
  EXPECT_EQ(CollectionNames(files, Home()).value(), (std::vector<std::string>{"a", "b"}));
}

}  // namespace
}  // namespace quenlar
