// quenlar collect over a platform in memory: its defaults, its options, its output and its exit status.
#include <algorithm>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "base/ascii.h"
#include "cli/exit_status.h"
#include "cli/json_text.h"
#include "cli/paths.h"
#include "command_system.h"
#include "in_memory_databases.h"

namespace quenlar {
namespace {

using std::chrono::milliseconds;
using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

using Strings = std::vector<std::string>;

constexpr const char* kStart = "https://www.firma.de/";

class CollectCommandTest : public testing::Test {
 protected:
  CollectCommandTest() {
    system.fake.web_client.ServeOthers([](const WebRequest&) { return ScriptedWebAnswer{.status = 404}; });
  }

  void Page(const std::string& url, std::string body) {
    system.fake.web_client.Serve(url, {.body = std::move(body), .ip = "1.0.0.1"});
  }
  // The start, which leads to pages with one address each.
  void PutSite(int pages) {
    std::string links;
    for (int i = 1; i <= pages; ++i) {
      const std::string number = std::to_string(i);
      links += "<a href=/" + number + ">page</a>";
      Page(kStart + number, "<title>Page " + number + "</title>a" + number + "@firma.de");
    }
    Page(kStart, "<title>Start</title>" + links);
  }

  int Collect(const Strings& more = {}, const std::string& name = "firma") {
    Strings arguments = {"collect", kStart, "--name", name, "--contact", "me@x.de"};
    arguments.insert(arguments.end(), more.begin(), more.end());
    return system.Run(std::move(arguments));
  }
  // The members of the summary of such a run.
  Json Summary(Strings more, int status = kExitDone) {
    const std::string path = AbsolutePath("/summary.json");
    more.insert(more.end(), {"--summary", path});
    EXPECT_EQ(Collect(more), status) << system.errors();
    return Json::parse(system.fake.files.Contents(path).value_or("{}"));
  }
  // The pages that were asked for.
  [[nodiscard]] Strings Visited() const {
    Strings urls;
    for (const std::string& url : system.fake.web_client.urls()) {
      if (!url.ends_with("/robots.txt")) urls.push_back(url);
    }
    return urls;
  }
  // The shortest time between two requests to one host.
  [[nodiscard]] milliseconds ShortestPause() const {
    milliseconds shortest = milliseconds::max();
    std::optional<milliseconds> last;
    for (const auto& exchange : system.fake.web_client.sent()) {
      if (last) shortest = std::min(shortest, exchange.at - *last);
      last = exchange.at;
    }
    return shortest;
  }

  CommandSystem system;
  InMemoryDatabases databases{system.fake.files};
};

TEST_F(CollectCommandTest, OffLineItEndsWithStatus3AndAsksForNothing) {
  PutSite(1);
  system.fake.interfaces.alive = false;
  EXPECT_EQ(Collect(), kExitOffLine);
  EXPECT_THAT(system.errors(), HasSubstr("You are not on the internet.\n"));
  EXPECT_TRUE(system.fake.web_client.sent().empty());
  EXPECT_EQ(Summary({}, kExitOffLine)["reason"], "off line");
  EXPECT_EQ(Collect({"--assume-online"}), kExitDone);
  EXPECT_EQ(system.output(), "a1@firma.de\n");
}

TEST_F(CollectCommandTest, ANetworkThatIsLostIsStatus3AndTheNextRunGoesOn) {
  PutSite(3);
  system.fake.web_client.Serve(kStart + std::string("2"), WebFails(WebFailure::kNoConnection));
  system.fake.web_client.Serve(kStart + std::string("3"), WebFails(WebFailure::kNoConnection));
  system.fake.loop.OnPump([&] { system.fake.interfaces.alive = system.output().empty(); });
  EXPECT_EQ(Collect(), kExitOffLine);
  EXPECT_EQ(system.output(), "a1@firma.de\n");
  EXPECT_THAT(system.errors(), HasSubstr("You are not on the internet.\n"));
  system.fake.loop.OnPump({});
  system.fake.interfaces.alive = true;
  PutSite(3);
  EXPECT_EQ(Collect(), kExitDone);
  EXPECT_EQ(system.output(), "a2@firma.de\na3@firma.de\n");
}

TEST_F(CollectCommandTest, StoppedAtAnyAddressItEndsWithStatus130AndTheNextRunGoesOn) {
  constexpr int kPages = 6;
  for (int stop_after = 0; stop_after < kPages; ++stop_after) {
    SCOPED_TRACE(stop_after);
    const std::string name = "stopped" + std::to_string(stop_after);
    PutSite(kPages);
    system.fake.loop.OnPump([&] {
      if (std::count(system.output().begin(), system.output().end(), '\n') >= stop_after) system.stop();
    });
    EXPECT_EQ(system.Run({"collect", kStart, "--name", name}), kExitStopped);
    EXPECT_THAT(system.errors(), HasSubstr("Stopped. The same command goes on.\n"));
    std::string found = system.output();
    system.fake.loop.OnPump({});
    EXPECT_EQ(system.Run({"collect", kStart, "--name", name}), kExitDone);
    EXPECT_EQ(found + system.output(),
              "a1@firma.de\na2@firma.de\na3@firma.de\na4@firma.de\na5@firma.de\na6@firma.de\n");
  }
}

TEST_F(CollectCommandTest, ASecondProgramInTheFolderIsRefusedAndReadersAreNot) {
  PutSite(1);
  EXPECT_EQ(Collect(), kExitDone);
  const Strings before = system.fake.files.AllFiles();
  const auto bytes = system.fake.files.Contents("/user/quenlar/data/firma.sqlite");
  const std::size_t asked = system.fake.web_client.sent().size();
  const auto other = system.fake.files.Lock("/user/quenlar", "quenlar.lock");
  ASSERT_TRUE(other.ok());
  EXPECT_EQ(Collect({"--again"}), kExitFailed);
  EXPECT_EQ(system.errors(), "Another Quenlar is at work in /user/quenlar !\n");
  EXPECT_EQ(system.fake.files.AllFiles(), before);
  EXPECT_EQ(system.fake.files.Contents("/user/quenlar/data/firma.sqlite"), bytes);
  EXPECT_EQ(system.fake.web_client.sent().size(), asked);
  EXPECT_EQ(system.Run({"addresses", "firma"}), kExitDone);
  EXPECT_EQ(system.output(), "a1@firma.de\n");
  EXPECT_EQ(system.Run({"collections"}), kExitDone);
  EXPECT_EQ(system.output(), "firma\t1\t2\t0\n");
  EXPECT_EQ(system.Run({"why", "firma", kStart}), kExitDone);
}

TEST_F(CollectCommandTest, TheContactIsKeptOnceGiven) {
  const std::string request = "--contact TEXT";
  EXPECT_EQ(system.Run({"collect", kStart}), kExitDone);
  EXPECT_THAT(system.errors(), HasSubstr(request));
  EXPECT_EQ(system.fake.web_client.sent().back().request.user_agent, "Quenlar/3.0");
  EXPECT_EQ(system.Run({"collect", "https://a.de/", "--contact", "me@x.de"}), kExitDone);
  EXPECT_THAT(system.errors(), Not(HasSubstr(request)));
  EXPECT_EQ(system.Run({"collect", "https://b.de/"}), kExitDone);
  EXPECT_THAT(system.errors(), Not(HasSubstr(request)));
  EXPECT_EQ(system.fake.web_client.sent().back().request.user_agent, "Quenlar/3.0 (+me@x.de)");
}

TEST_F(CollectCommandTest, TheSearchServiceIsKeptOnceGivenAndAskedInTheLanguageOfTheRun) {
  const std::string service = "https://search.example.org/search?q=";
  EXPECT_EQ(system.Run({"collect", "red cars"}), kExitFailed);
  EXPECT_THAT(system.errors(), HasSubstr("--search URL"));
  Page(service + "red%20cars&format=json&language=fr&pageno=1", R"({"results": [{"url": "https://a.de/"}]})");
  Page(service + "blue%20cars&format=json&language=de&pageno=1", R"({"results": [{"url": "https://b.de/"}]})");
  for (const char* const rest :
       {"red%20cars&format=json&language=fr&pageno=2", "blue%20cars&format=json&language=de&pageno=2"})
    Page(service + rest, R"({"results": []})");
  Page("https://a.de/", "a@a.de");
  Page("https://b.de/", "b@b.de");
  EXPECT_EQ(system.Run({"collect", "red cars", "--search", "https://search.example.org", "--language", "fr"}),
            kExitDone);
  EXPECT_EQ(system.output(), "a@a.de\n");
  EXPECT_EQ(system.Run({"collect", "blue cars", "--language", "de"}), kExitDone);
  EXPECT_EQ(system.output(), "b@b.de\n");
}

TEST_F(CollectCommandTest, WithoutOptionsLinksStayOnTheSiteForFiveClicks) {
  Page(kStart, "<a href=/1>1</a><a href=https://shop.firma.de/>shop</a><a href=https://elsewhere.de/>other</a>");
  for (int i = 1; i <= 6; ++i) {
    Page(kStart + std::to_string(i),
         "click" + std::to_string(i) + "@firma.de <a href=/" + std::to_string(i + 1) + ">x");
  }
  Page("https://shop.firma.de/", "shop@firma.de");
  Page("https://elsewhere.de/", "other@elsewhere.de");
  EXPECT_EQ(Collect(), kExitDone);
  const std::string found = system.output();
  EXPECT_THAT(found,
              AllOf(HasSubstr("click5@"), HasSubstr("shop@"), Not(HasSubstr("click6@")), Not(HasSubstr("other@"))));
  EXPECT_EQ(system.Run({"why", "firma", kStart + std::string("6")}), kExitDone);
  EXPECT_THAT(system.output(), HasSubstr("5"));
  EXPECT_EQ(Collect({"--depth", "6", "--scope", "anywhere"}), kExitDone);
  EXPECT_THAT(system.output(), AllOf(HasSubstr("click6@"), HasSubstr("other@")));
}

TEST_F(CollectCommandTest, WithTheScopeHostAndNoClicksTheStartIsVisitedAlone) {
  Page(kStart, "<a href=/1>1</a><a href=https://shop.firma.de/>shop</a>");
  Page("https://www.firma.de/1", "a1@firma.de");
  Page("https://shop.firma.de/", "shop@firma.de");
  EXPECT_EQ(Collect({"--depth", "0"}), kExitDone);
  EXPECT_THAT(Visited(), ElementsAre(kStart));
  EXPECT_EQ(Collect({"--scope", "host"}), kExitDone);
  EXPECT_EQ(system.output(), "a1@firma.de\n");
}

TEST_F(CollectCommandTest, ThePauseIsASecondUnlessAnotherOneIsAskedFor) {
  PutSite(3);
  EXPECT_EQ(Collect(), kExitDone);
  EXPECT_EQ(ShortestPause(), milliseconds(1000));
}

TEST_F(CollectCommandTest, ThePauseMayBeAFractionOfASecond) {
  PutSite(3);
  EXPECT_EQ(Collect({"--delay", "0.25"}), kExitDone);
  EXPECT_EQ(ShortestPause(), milliseconds(250));
}

TEST_F(CollectCommandTest, ThousandsOfStartsComeFromAFileAnd64HostsAreVisitedAtATime) {
  constexpr int kStarts = 2000;
  std::string starts = "# many\n";
  for (int i = 0; i < kStarts; ++i) starts += "https://www.site" + std::to_string(i) + ".de/\n";
  system.fake.files.Put(AbsolutePath("/starts.txt"), starts);
  system.fake.web_client.ServeOthers([](const WebRequest& request) {
    const bool rules = request.url.ends_with("/robots.txt");
    return ScriptedWebAnswer{
        .status = rules ? 404 : 200, .body = "same@firma.de", .ip = "1.0.0.1", .delay = milliseconds(50)};
  });
  EXPECT_EQ(system.Run({"collect", "--from", "/starts.txt", "--name", "many"}), kExitDone) << system.errors();
  EXPECT_EQ(system.output(), "same@firma.de\n");
  EXPECT_EQ(Visited().size(), static_cast<std::size_t>(kStarts));
  EXPECT_EQ(system.fake.web_client.most_hosts_at_once(), 64u);
}

TEST_F(CollectCommandTest, AThousandPagesOfAHostAreReadUnlessAnotherNumberIsAskedFor) {
  PutSite(1000);
  const Json summary = Summary({"--delay", "0"});
  EXPECT_EQ(summary["pages"], 1000);
  EXPECT_EQ(summary["left"], 1);
  EXPECT_EQ(Summary({"--delay", "0", "--pages-per-host", "2000"})["left"], 0);
}

TEST_F(CollectCommandTest, ABudgetThatEndsARunIsStatus0) {
  PutSite(5);
  EXPECT_EQ(Summary({"--pages", "2"})["reason"], "pages");
  EXPECT_EQ(Summary({"--addresses", "2"})["reason"], "addresses");
  EXPECT_EQ(Summary({"--minutes", "0.01"})["reason"], "minutes");
  EXPECT_EQ(Summary({})["reason"], "finished");
}

TEST_F(CollectCommandTest, TheSummaryTellsOfTheRunAndTheCollection) {
  PutSite(2);
  Page(kStart + std::string("1"), "a1@firma.de, p [at] firma [dot] de, no@firma.de");
  system.fake.web_client.Serve(
      "https://www.firma.de/robots.txt",
      {.fields = {{"Content-Type", "text/plain"}}, .body = "User-agent: *\nDisallow: /2\n", .ip = "1.0.0.1"});
  const Json summary = Summary({"--remove", "no@"});
  EXPECT_GT(summary["bytes"], 100);
  EXPECT_GT(summary["seconds"], 1);
  Json rest = summary;
  rest.erase("bytes");
  rest.erase("seconds");
  EXPECT_EQ(rest, Json::parse(R"({"reason": "finished", "addresses": 1, "new": 1, "pages": 2, "failed": 0, "refused": 1,
                                  "left": 0, "protected": 1, "suppressed": 0, "collection": "firma"})"));
}

TEST_F(CollectCommandTest, ANewAddressIsARowOfTheFormatThatIsAskedFor) {
  Page(kStart, "<title>One, \"1\"</title>Info@Firma.de <a href=mailto:b@firma.de>b</a>");
  EXPECT_EQ(Collect({}, "a"), kExitDone);
  EXPECT_EQ(system.output(), "Info@firma.de\nb@firma.de\n");
  EXPECT_EQ(Collect({"--format", "csv"}, "b"), kExitDone);
  EXPECT_EQ(system.output(),
            "\"Info@firma.de\",\"https://www.firma.de/\",\"One, \"\"1\"\"\",\"text\"\n"
            "\"b@firma.de\",\"https://www.firma.de/\",\"One, \"\"1\"\"\",\"mailto\"\n");
  EXPECT_EQ(Collect({"--format", "jsonl"}, "c"), kExitDone);
  const Json row = Json::parse(system.output().substr(0, system.output().find('\n')));
  EXPECT_EQ(row["address"], "Info@firma.de");
  EXPECT_EQ(row["page"], kStart);
  EXPECT_EQ(row["title"], "One, \"1\"");
  EXPECT_EQ(row["place"], "text");
  EXPECT_THAT(row["seen"].get<std::string>(), testing::MatchesRegex("....-..-..T..:..:..Z"));
  EXPECT_EQ(row.size(), 5u);
}

TEST_F(CollectCommandTest, WordsProtectedAddressesAndRulesAreAsTheOptionsSay) {
  Page(kStart, "a@firma.de no@firma.de p [at] firma [dot] de <a href=/closed>x</a>");
  Page("https://www.firma.de/closed", "closed@firma.de");
  system.fake.web_client.Serve(
      "https://www.firma.de/robots.txt",
      {.fields = {{"Content-Type", "text/plain"}}, .body = "User-agent: *\nDisallow: /closed\n", .ip = "1.0.0.1"});
  EXPECT_EQ(Collect({"--remove", "no@"}), kExitDone);
  EXPECT_EQ(system.output(), "a@firma.de\n");
  EXPECT_THAT(system.errors(), AllOf(HasSubstr("1 protected address not listed"), HasSubstr("1 address dropped")));
  EXPECT_EQ(Collect({"--extract", "no@"}, "b"), kExitDone);
  EXPECT_EQ(system.output(), "no@firma.de\n");
  EXPECT_EQ(Collect({"--robots", "ignore"}, "c"), kExitDone);
  EXPECT_EQ(system.output(), "a@firma.de\nno@firma.de\nclosed@firma.de\n");
  EXPECT_EQ(Collect({"--decode-protected", "--format", "csv", "--depth", "0"}, "d"), kExitDone);
  EXPECT_THAT(system.output(), HasSubstr("\"p@firma.de\",\"https://www.firma.de/\",\"\",\"protected\"\n"));
}

TEST_F(CollectCommandTest, TheProxyIsThatOfTheOption) {
  EXPECT_EQ(Collect({"--proxy", "http://proxy.example:3128"}), kExitDone);
  EXPECT_EQ(system.opened.proxy, "http://proxy.example:3128");
}

TEST_F(CollectCommandTest, AFinishedCollectionSaysSoAndIsVisitedAnewWithAgain) {
  PutSite(1);
  EXPECT_EQ(Collect(), kExitDone);
  const std::size_t asked = system.fake.web_client.sent().size();
  EXPECT_EQ(Collect(), kExitDone);
  EXPECT_THAT(system.errors(), HasSubstr("This collection is finished. With --again its pages are visited anew.\n"));
  EXPECT_EQ(system.fake.web_client.sent().size(), asked);
  Page(kStart + std::string("1"), "new@firma.de");
  EXPECT_EQ(Collect({"--again"}), kExitDone);
  EXPECT_EQ(system.output(), "new@firma.de\n");
  EXPECT_EQ(system.Run({"addresses", "firma", "--sources", "--format", "csv"}), kExitDone);
  EXPECT_EQ(system.output(),
            "\"a1@firma.de\",\"https://www.firma.de/1\",\"\",\"text\",\"gone\"\n"
            "\"new@firma.de\",\"https://www.firma.de/1\",\"\",\"text\"\n");
}

TEST_F(CollectCommandTest, AddressesAndWhyAnswerOfWhatItHolds) {
  PutSite(1);
  EXPECT_EQ(Collect(), kExitDone);
  EXPECT_EQ(system.Run({"addresses", "firma", "--since", "2000-01-01"}), kExitDone);
  EXPECT_EQ(system.output(), "a1@firma.de\n");
  EXPECT_EQ(system.Run({"addresses", "firma", "--since", "2100-01-01T00:00:00Z"}), kExitDone);
  EXPECT_EQ(system.output(), "");
  EXPECT_EQ(system.Run({"addresses", "firma", "--place", "mailto"}), kExitDone);
  EXPECT_EQ(system.output(), "");
  EXPECT_EQ(system.Run({"addresses", "firma", "--site", "firma.de", "--place", "text", "--format", "csv"}), kExitDone);
  EXPECT_EQ(system.output(), "\"a1@firma.de\",\"https://www.firma.de/1\",\"Page 1\",\"text\"\n");
  EXPECT_EQ(system.Run({"why", "firma", kStart + std::string("1"), "--format", "jsonl"}), kExitDone);
  const Json facts = Json::parse(system.output());
  EXPECT_EQ(facts, Json::parse(R"({"page": "https://www.firma.de/1", "state": "read", "depth": 1, "status": 200,
                                   "parent": "https://www.firma.de/"})"));
  EXPECT_EQ(system.Run({"why", "firma", "nobody@firma.de"}), kExitFailed);
  EXPECT_EQ(system.output(), "");
}

TEST_F(CollectCommandTest, ItsHelpSaysThatOwnersHideProtectedAddresses) {
  EXPECT_EQ(system.Run({"collect", "--help"}), kExitDone);
  EXPECT_THAT(system.output(), AllOf(HasSubstr("--decode-protected"), HasSubstr("their owners chose to hide")));
}

}  // namespace
}  // namespace quenlar
