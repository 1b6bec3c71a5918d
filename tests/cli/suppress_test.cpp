// quenlar suppress and quenlar erase, and what the list does to other commands, over a platform in memory.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "cli/exit_status.h"
#include "cli/paths.h"
#include "command_system.h"
#include "engine/home.h"
#include "settings/suppression_list.h"

namespace quenlar {
namespace {

using testing::HasSubstr;

constexpr const char* kHome = "/user/quenlar";
constexpr const char* kReport = "/user/quenlar/report/firma_de.rpt";

class SuppressCommandTest : public testing::Test {
 protected:
  SuppressCommandTest() {
    system.fake.files.AddFolder(kHome + std::string("/data"));
    system.fake.files.AddFolder(kHome + std::string("/report"));
  }

  void PutList(const std::string& text) { system.fake.files.Put("/user/quenlar/suppressed.txt", text); }
  void PutReport() { system.fake.files.Put(kReport, "anna@firma.de\r\nbert@firma.fr\r\n"); }
  [[nodiscard]] std::string List() const { return system.FileText("suppressed.txt"); }
  [[nodiscard]] std::string Report() const { return system.FileText("report/firma_de.rpt"); }

  CommandSystem system;
};

TEST_F(SuppressCommandTest, TheListIsShownEntryByEntry) {
  EXPECT_EQ(system.Run({"suppress"}), kExitDone);
  EXPECT_EQ(system.output(), "");
  PutList("# mine\nAnna@firma.de # by phone\n\nwhat\n@firma.fr\n");
  EXPECT_EQ(system.Run({"suppress"}), kExitDone);
  EXPECT_EQ(system.output(), "anna@firma.de\n@firma.fr\n");
  EXPECT_THAT(system.errors(), HasSubstr("1 line is neither"));
}

TEST_F(SuppressCommandTest, WhatIsAddedIsDeletedWhereItIsStored) {
  PutReport();
  EXPECT_EQ(system.Run({"suppress", "Anna@firma.de", "@firma.com"}), kExitDone);
  EXPECT_EQ(List(), "anna@firma.de\n@firma.com\n");
  EXPECT_EQ(Report(), "bert@firma.fr\r\n");
  EXPECT_THAT(system.errors(), HasSubstr("Added to the suppression list: 2 of 2."));
  EXPECT_THAT(system.errors(), HasSubstr("1 address taken out of 0 collections and 1 file of projects."));
}

TEST_F(SuppressCommandTest, WrongEntriesAreRefusedBeforeAnythingChanges) {
  EXPECT_EQ(system.Run({"suppress", "bert@firma.fr", "firma.de"}), kExitUsage);
  EXPECT_EQ(List(), "(no file)");
  EXPECT_EQ(system.Run({"suppress", "--remove", "firma.de"}), kExitUsage);
  EXPECT_EQ(system.Run({"suppress", "--remove", "a@firma.de", "--import", "x"}), kExitUsage);
}

TEST_F(SuppressCommandTest, AFileIsImported) {
  system.fake.files.Put(AbsolutePath("/list.txt"), "email\r\nbert@firma.fr\r\n# none\r\n@firma.com\r\n");
  PutReport();
  EXPECT_EQ(system.Run({"suppress", "--import", "/list.txt"}), kExitFailed);
  EXPECT_EQ(List(), "bert@firma.fr\n@firma.com\n");
  EXPECT_EQ(Report(), "anna@firma.de\r\n");
  EXPECT_THAT(system.errors(), HasSubstr("list.txt: 1 line is neither an address nor a domain nor a digest (line 1)"));
  EXPECT_EQ(system.Run({"suppress", "--import", "/nothing.txt"}), kExitFailed);
}

TEST_F(SuppressCommandTest, StandardInputIsImported) {
  system.streams.input = "bert@firma.fr\n@firma.com";
  system.streams.largest_read = 5;
  EXPECT_EQ(system.Run({"suppress", "--import", "-"}), kExitDone);
  EXPECT_EQ(List(), "bert@firma.fr\n@firma.com\n");
}

TEST_F(SuppressCommandTest, RemovingBringsNothingBack) {
  PutReport();
  ASSERT_EQ(system.Run({"suppress", "anna@firma.de", "@firma.com"}), kExitDone);
  EXPECT_EQ(system.Run({"suppress", "--remove", "ANNA@firma.de"}), kExitDone);
  EXPECT_EQ(List(), "@firma.com\n");
  EXPECT_EQ(Report(), "bert@firma.fr\r\n");
  EXPECT_EQ(system.Run({"suppress", "--remove", "anna@firma.de", "@firma.com"}), kExitFailed);
  EXPECT_EQ(system.errors(), "anna@firma.de is not on the suppression list !\n");
  EXPECT_EQ(List(), "");
}

TEST_F(SuppressCommandTest, AnAddressIsRemovedByItsDigestToo) {
  PutList(DigestEntry("anna@firma.de") + "\n");
  EXPECT_EQ(system.Run({"suppress", "--remove", "Anna@firma.de"}), kExitDone);
  EXPECT_EQ(List(), "");
}

TEST_F(SuppressCommandTest, WhileAnotherProgramWorksTheListGrowsAndProjectsStay) {
  PutReport();
  Installation installation;
  installation.program_folder = kHome;
  const auto lock = LockHome(system.fake.files, installation);
  EXPECT_EQ(system.Run({"suppress", "anna@firma.de"}), kExitFailed);
  EXPECT_EQ(List(), "anna@firma.de\n");
  EXPECT_THAT(system.errors(), HasSubstr("Another Quenlar is at work in /user/quenlar"));
  EXPECT_THAT(Report(), HasSubstr("anna@firma.de"));
}

TEST_F(SuppressCommandTest, EraseTakesAnAddressOutOfReports) {
  PutReport();
  EXPECT_EQ(system.Run({"erase", "Anna@Firma.de", "--yes"}), kExitDone);
  EXPECT_EQ(Report(), "bert@firma.fr\r\n");
  EXPECT_EQ(List(), "(no file)");
  EXPECT_EQ(system.Run({"erase", "anna@firma.de", "--yes"}), kExitDone);
  EXPECT_THAT(system.errors(), HasSubstr("anna@firma.de: no collection and no report holds anything of it."));
}

TEST_F(SuppressCommandTest, EraseAsksOnATerminalAndDoesNothingWithoutOne) {
  PutReport();
  EXPECT_EQ(system.Run({"erase", "anna@firma.de"}), kExitFailed);
  EXPECT_THAT(system.errors(), HasSubstr("--yes"));
  system.streams.input_is_terminal = true;
  system.streams.input = "n\n";
  EXPECT_EQ(system.Run({"erase", "anna@firma.de"}), kExitFailed);
  EXPECT_THAT(system.errors(),
              HasSubstr("anna@firma.de: take it out of all collections and reports for good ? [y/N] "));
  EXPECT_THAT(Report(), HasSubstr("anna@firma.de"));
  system.streams = FakeConsole();
  system.streams.input_is_terminal = true;
  system.streams.input = "y\n";
  EXPECT_EQ(system.Run({"erase", "anna@firma.de"}), kExitDone);
  EXPECT_EQ(Report(), "bert@firma.fr\r\n");
}

TEST_F(SuppressCommandTest, EraseAndSuppressKeepsTheDigestAlone) {
  PutReport();
  PutList("# anna@firma.de wrote to us\nanna@firma.de\n@firma.com\n");
  EXPECT_EQ(system.Run({"erase", "Anna@firma.de", "--suppress", "--yes"}), kExitDone);
  EXPECT_EQ(List(), "@firma.com\n" + DigestEntry("anna@firma.de") + "\n");
  EXPECT_EQ(system.Run({"erase", "anna@firma.de", "--suppress", "--yes"}), kExitDone);
  EXPECT_EQ(List(), "@firma.com\n" + DigestEntry("anna@firma.de") + "\n");
}

TEST_F(SuppressCommandTest, EntriesSurviveEveryDeletion) {
  const std::string entries = "bert@firma.fr\n@firma.com\n" + DigestEntry("carl@firma.de") + "\n";
  PutList(entries);
  PutReport();
  system.fake.files.Put("/user/quenlar/data/firma_de.dat",
                        "Brenvy Quenlar Pro, http://www.quenlar.example\r\n"
                        "[A]\r\n[B]\r\n[C]\r\n[D]\r\n[E]\r\n[M]\r\n[F]\r\n[G]\r\n[H]\r\n[I]\r\n[J]\r\n");
  for (const char* const address : {"bert@firma.fr", "carl@firma.de", "dora@firma.com"}) {
    EXPECT_EQ(system.Run({"erase", address, "--yes"}), kExitDone) << system.errors();
    EXPECT_EQ(List(), entries);
  }
  EXPECT_EQ(system.Run({"delete", "firma.de", "--yes"}), kExitDone) << system.errors();
  EXPECT_EQ(Report(), "(no file)");
  EXPECT_EQ(List(), entries);
}

TEST_F(SuppressCommandTest, EraseTakesAddressesAlone) {
  for (const char* text : {"@firma.de", "firma.de", "anna", "a b@firma.de"}) {
    EXPECT_EQ(system.Run({"erase", text, "--yes"}), kExitUsage) << text;
  }
  EXPECT_EQ(system.Run({"erase", DigestEntry("anna@firma.de"), "--yes"}), kExitUsage);
}

TEST_F(SuppressCommandTest, ReportsAreWrittenWithoutSuppressedAddresses) {
  PutReport();
  PutList("anna@firma.de\n");
  EXPECT_EQ(system.Run({"report", "firma.de"}), kExitDone);
  EXPECT_THAT(Report(), testing::EndsWith("\r\n\r\nbert@firma.fr\r\n"));
}

TEST_F(SuppressCommandTest, BooksAreMergedWithoutSuppressedAddresses) {
  system.fake.files.Put(AbsolutePath("/book.txt"), "anna@firma.de, bert@firma.fr, carl@firma.com");
  PutList("@FIRMA.fr\n" + DigestEntry("anna@firma.de") + "\n");
  EXPECT_EQ(system.Run({"merge", "/book.txt", "--output", "/all.txt"}), kExitDone);
  EXPECT_EQ(system.fake.files.Contents(AbsolutePath("/all.txt")), "carl@firma.com \r\n");
}

TEST_F(SuppressCommandTest, NothingIsListedWhileTheListCannotBeRead) {
  PutReport();
  system.fake.files.Put("/book.txt", "anna@firma.de");
  system.fake.files.AddFolder("/user/quenlar/suppressed.txt");
  const std::vector<std::vector<std::string>> commands = {{"suppress"},
                                                          {"suppress", "anna@firma.de"},
                                                          {"erase", "anna@firma.de", "--suppress", "--yes"},
                                                          {"extract", "firma.de"},
                                                          {"collect", "firma.de"},
                                                          {"report", "firma.de"},
                                                          {"merge", "/book.txt", "--output", "/all.txt"}};
  for (const std::vector<std::string>& command : commands) {
    EXPECT_EQ(system.Run(command), kExitFailed) << command.front();
    EXPECT_THAT(system.errors(), HasSubstr("The suppression list cannot be read: /user/quenlar/suppressed.txt"))
        << command.front();
    EXPECT_EQ(system.output(), "") << command.front();
  }
  EXPECT_EQ(system.fake.files.Contents("/all.txt"), std::nullopt);
  EXPECT_THAT(Report(), HasSubstr("anna@firma.de"));
}

}  // namespace
}  // namespace quenlar
