// The command line as a whole: usage, help, the program folder, and the files made from the declarations.
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>

#include <gtest/gtest.h>

#include "cli/declarations.h"
#include "cli/exit_status.h"
#include "cli/paths.h"
#include "command_system.h"

namespace quenlar {
namespace {

using Arguments = std::vector<std::string>;

TEST(CommandLine, AnswersWrongUsageWithStatus2AndAHint) {
  const Arguments kWrong[] = {{},
                              {"nope"},
                              {"extract"},
                              {"extract", "a", "b"},
                              {"extract", "a", "--nope"},
                              {"extract", "a", "--format", "xml"},
                              {"extract", "a", "--language", "jp"},
                              {"extract", "a", "--save-interval", "31"},
                              {"extract", "a", "--stop-number", "0"},
                              {"extract", "a", "--stop-number", "x"},
                              {"extract", "a", "--other-sites", "maybe"},
                              {"extract", "a", "--export", "none"},
                              {"extract", "a", "--search-engine", "search.example"},
                              {"extract", "a", "--proxy", "nowhere"},
                              {"extract", "a", "--summary"},
                              {"extract", "a", "--summary", ""},
                              {"extract", "a", "--summary="},
                              {"extract", "a\nb"},
                              {"extract", "a\rb"},
                              {"--home", "", "options", "Search", "4"},
                              {"options", "Search", "4", "--home="},
                              {"analyze"},
                              {"delete"},
                              {"report"},
                              {"merge", "a.txt"},
                              {"merge", "--output", "a.txt"},
                              {"options", "Search", "1", "2"},
                              {"projects", "x"},
                              {"demo", "x"},
                              {"collect"},
                              {"collect", "--name", "x"},
                              {"collect", "a.de", "--delay", "nan"},
                              {"collect", "a.de", "--delay", "inf"},
                              {"collect", "a.de", "--delay=-1"},
                              {"collect", "a.de", "--delay", "3600.5"},
                              {"collect", "a.de", "--delay", "1s"},
                              {"collect", "a.de", "--minutes", "nan"},
                              {"collect", "a.de", "--pages", "0"},
                              {"collect", "a.de", "--pages=-1"},
                              {"collect", "a.de", "--pages", "1.5"},
                              {"collect", "a.de", "--pages-per-host=-1"},
                              {"collect", "a.de", "--addresses", "18446744073709551616"},
                              {"collect", "a.de", "--hosts=-18446744073709551615"},
                              {"collect", "a.de", "--hosts", "100001"},
                              {"collect", "a.de", "--depth", "1001"},
                              {"harvest", "a.html", "--jobs=-18446744073709551615"},
                              {"harvest", "a.html", "--jobs", "257"},
                              {"extract", "\xff"}};
  for (const Arguments& arguments : kWrong) {
    CommandSystem system;
    EXPECT_EQ(system.Run(arguments), kExitUsage) << testing::PrintToString(arguments);
    EXPECT_EQ(system.output(), "");
    EXPECT_EQ(system.errors().substr(0, 9), "quenlar: ") << system.errors();
    EXPECT_TRUE(system.fake.files.AllFiles().empty());
  }
}

TEST(CommandLine, NamesTheWordThatIsNoCommand) {
  for (const char* word : {"nope", "help", "--nope"}) {
    CommandSystem system;
    EXPECT_EQ(system.Run({word}), kExitUsage);
    EXPECT_EQ(system.errors(),
              std::string("quenlar: there is no command or option ") + word + "\nTry: quenlar --help\n");
  }
  CommandSystem system;
  system.Run({});
  EXPECT_EQ(system.errors(), "quenlar: A subcommand is required\nTry: quenlar --help\n");
}

TEST(CommandLine, EndsWithStatus0WhenNobodyReadsTheHelp) {
  for (const Arguments& arguments : {Arguments{"--help"}, {"--version"}, {"describe", "man"}, {"options"}}) {
    CommandSystem system;
    system.streams.readers_patience = 0;
    EXPECT_EQ(system.Run(arguments), kExitDone) << arguments[0];
  }
}

TEST(CommandLine, HasHelpWithExamplesAndTheVersionEverywhere) {
  CommandLine line;
  for (const DeclaredCommand& command : Declarations(*line.root)) {
    Arguments arguments;
    if (!command.name.empty()) arguments.push_back(command.name);
    CommandSystem system;
    arguments.push_back("--help");
    EXPECT_EQ(system.Run(arguments), kExitDone) << command.name;
    EXPECT_NE(system.output().find("Examples:\n  "), std::string::npos) << command.name;
    for (const DeclaredOption& option : command.options) {
      EXPECT_NE(system.output().find(option.names.front()), std::string::npos) << option.names.front();
    }
    arguments.back() = "--version";
    EXPECT_EQ(system.Run(arguments), kExitDone) << command.name;
    EXPECT_EQ(system.output(), "quenlar 3.0\n");
    EXPECT_EQ(system.errors(), "");
  }
}

TEST(CommandLine, SaysAHelpfulWordForEveryOption) {
  CommandLine line;
  for (const DeclaredCommand& command : Declarations(*line.root)) {
    EXPECT_FALSE(command.help.empty()) << command.name;
    for (const DeclaredOption& option : command.options) EXPECT_GT(option.help.size(), 8u) << option.names.front();
  }
}

TEST(CommandLine, TakesATextThatIsAlsoACommandsName) {
  CommandSystem system;
  EXPECT_EQ(system.Run({"report", "report"}), kExitFailed);
  EXPECT_EQ(system.errors(), "No eMail address found\n");
}

TEST(CommandLine, TakesATextThatBeginsWithADashBehindTwoDashes) {
  CommandSystem system;
  EXPECT_EQ(system.Run({"report", "--", "-x"}), kExitFailed);
  EXPECT_EQ(system.errors(), "No eMail address found\n");
}

TEST(CommandLine, TakesTheHomeFromTheOptionThenTheEnvironmentThenTheSystem) {
  const std::string here = AbsolutePath(".");
  CommandSystem system;
  system.Run({"projects"});
  EXPECT_EQ(system.opened.home, "/user/quenlar");
  EXPECT_FALSE(system.opened.home_given);
  system.environment["QUENLAR_HOME"] = "";
  system.Run({"projects"});
  EXPECT_FALSE(system.opened.home_given);
  system.environment["QUENLAR_HOME"] = "from-environment";
  system.Run({"projects"});
  EXPECT_EQ(system.opened.home, AbsolutePath("from-environment"));
  EXPECT_TRUE(system.opened.home_given);
  for (const Arguments& arguments : {Arguments{"--home", "given/", "projects"}, {"projects", "--home=given"}}) {
    system.Run(arguments);
    EXPECT_EQ(system.opened.home, AbsolutePath("given"));
    EXPECT_TRUE(system.opened.home_given);
  }
  EXPECT_TRUE(AbsolutePath("given").starts_with(here));
}

TEST(CommandLine, NeedsAProgramFolderOnlyWhereSomethingLiesInIt) {
  const std::string book = AbsolutePath("book.txt");
  for (const Arguments& arguments : {Arguments{"extract", "a.example"},
                                     {"projects"},
                                     {"delete", "a.example", "--yes"},
                                     {"report", "a.example"},
                                     {"options"},
                                     {"options", "Search", "1"},
                                     {"filter"},
                                     {"filter", "--remove", "a"}}) {
    CommandSystem system;
    system.default_home = "";
    EXPECT_EQ(system.Run(arguments), kExitFailed) << arguments[0];
    EXPECT_EQ(system.errors(), "There is no program folder; name one by --home !\n") << arguments[0];
  }
  for (const Arguments& arguments :
       {Arguments{"analyze", "--jsonl"}, {"merge", "book.txt", "--output", "all.txt"}, {"net"}}) {
    CommandSystem system;
    system.default_home = "";
    system.fake.files.Put(book, "a@x.test");
    EXPECT_EQ(system.Run(arguments), kExitDone) << arguments[0] << ": " << system.errors();
  }
}

TEST(CommandLine, SaysThatResultsAreLostOnAFullDiskAndEndsWithStatus1) {
  for (const Arguments& arguments : {Arguments{"--help"}, {"options"}, {"net"}, {"analyze", "--jsonl"}}) {
    CommandSystem system;
    system.streams.input = "{\"host\":\"a\"}\n";
    system.streams.output_is_full = true;
    EXPECT_EQ(system.Run(arguments), kExitFailed) << arguments[0];
    EXPECT_EQ(system.errors(), "quenlar: no space is left for the results\n") << arguments[0];
  }
}

TEST(TemporaryFolder, BelongsToWhoeverHasMadeIt) {
  const std::string one = MakeTemporaryFolder("quenlar-cli-test"), two = MakeTemporaryFolder("quenlar-cli-test");
  EXPECT_NE(one, two);
  for (const std::string& folder : {one, two}) {
    EXPECT_TRUE(std::filesystem::is_directory(folder)) << folder;
    std::filesystem::remove(folder);
  }
}

TEST(AbsolutePath, HasNoDotsAndNoSeparatorAtItsEnd) {
  EXPECT_EQ(AbsolutePath("a/./b/"), AbsolutePath("a/b"));
  EXPECT_EQ(AbsolutePath("./"), AbsolutePath("."));
  EXPECT_FALSE(AbsolutePath(".").ends_with("."));
  EXPECT_EQ(AbsolutePath("\xc3\xbc").substr(AbsolutePath(".").size() + 1), "\xc3\xbc");
}

// Files that `quenlar describe` makes; a change of an option changes them too.
TEST(CommandLine, ManPageAndCompletionsAreThoseOfTheDeclarations) {
  CommandLine line;
  const auto commands = Declarations(*line.root);
  const struct {
    const char* path;
    std::string text;
  } kFiles[] = {{"docs/quenlar.1", ManPage(commands)},
                {"packaging/linux/quenlar.bash", BashCompletion(commands)},
                {"packaging/linux/_quenlar", ZshCompletion(commands)},
                {"packaging/linux/quenlar.fish", FishCompletion(commands)}};
  const char* const tests = std::getenv("QUENLAR_TEST_DATA");
  ASSERT_NE(tests, nullptr);
  for (const auto& file : kFiles) {
    std::ifstream stream(std::string(tests) + "/../" + file.path, std::ios::binary);
    std::ostringstream text;
    text << stream.rdbuf();
    EXPECT_EQ(text.str(), file.text) << file.path << " is not up to date: see `quenlar describe`";
  }
}

}  // namespace
}  // namespace quenlar
