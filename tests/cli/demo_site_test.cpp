// The invented web of the demonstration.
#include "cli/demo_site.h"

#include <gtest/gtest.h>

#include "cli/exit_status.h"
#include "command_system.h"

namespace quenlar {
namespace {

TEST(DemoSite, AnswersForEveryHostAndPage) {
  EXPECT_EQ(DemoAnswer("http://search.example/search?hl=en&q=x").status, 200);
  EXPECT_EQ(DemoAnswer("http://search.example:80/search?hl=en&q=x").status, 200);
  EXPECT_EQ(DemoAnswer("http://spades.example").status, 200);
  EXPECT_EQ(DemoAnswer("http://new-home.example/garden").body, DemoAnswer("http://new-home.example/garden/").body);
  EXPECT_EQ(DemoAnswer("http://moved.example/").location, "http://new-home.example/garden/");
  EXPECT_EQ(DemoAnswer("https://www.library.example").body, DemoAnswer("http://www.library.example/").body);
  EXPECT_EQ(DemoAnswer("https://www.library.example/robots.txt").content_type, "text/plain");
  EXPECT_NE(DemoAnswer("https://www.library.example/robots.txt").body.find(kDemoForbidden), std::string::npos);
  EXPECT_NE(DemoAnswer("https://www.library.example/contact").body.find(kDemoSuppressed), std::string::npos);
  EXPECT_EQ(DemoAnswer("http://nobody.example/").status, 404);
  EXPECT_EQ(DemoAnswer("").status, 404);
}

TEST(DemoSite, HoldsTwoProjectsThatComeToTheirEnds) {
  const struct {
    const char* text;
    std::size_t addresses;
  } kProjects[] = {{kDemoKeyword, 11}, {kDemoAddress, 5}};
  for (const auto& project : kProjects) {
    CommandSystem system;
    system.fake.fetcher.ServeOthers([](const std::string& address) -> std::optional<ScriptedAnswer> {
      ServedAnswer answer = DemoAnswer(address);
      ScriptedAnswer scripted;
      for (int hops = 0; !answer.location.empty(); ++hops) {
        scripted.redirects.push_back(answer.location);
        if (hops == kMaxRedirects) {
          scripted.failed = true;
          return scripted;
        }
        answer = DemoAnswer(answer.location);
      }
      scripted.body = answer.body;
      return scripted;
    });
    EXPECT_EQ(system.Run({"extract", project.text, "--search-engine", kDemoSearchEngine}), kExitDone);
    const std::string& printed = system.output();
    EXPECT_EQ(static_cast<std::size_t>(std::count(printed.begin(), printed.end(), '\n')), project.addresses) << printed;
  }
}

}  // namespace
}  // namespace quenlar
