// The suppression list and its file.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "settings/suppression_file.h"
#include "support/fake_idna.h"
#include "support/in_memory_files.h"

namespace quenlar {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr const char* kPath = "/home/suppressed.txt";

class SuppressionTest : public testing::Test {
 protected:
  SuppressionTest() {
    files_.AddFolder("/home");
    installation_.program_folder = "/home";
  }

  Result<SuppressionList> Load() {
    messages_.clear();
    return LoadSuppressionList(files_, idna_, installation_, messages_);
  }
  SuppressionList Loaded(const std::string& text) {
    files_.Put(kPath, text);
    Result<SuppressionList> list = Load();
    EXPECT_TRUE(list.ok()) << list.status().message();
    return list.take();
  }
  Result<SuppressionChange> Change(const std::vector<std::string_view>& add, const DropLine& drop = {}) {
    return ChangeSuppressionFile(files_, idna_, installation_, add, drop);
  }
  std::string Entry(std::string_view text) { return SuppressionEntry(text, idna_).value_or(""); }

  InMemoryFiles files_;
  FakeIdna idna_;
  Installation installation_;
  std::vector<std::string> messages_;
};

TEST_F(SuppressionTest, EntriesAreAddressesDomainsAndDigests) {
  EXPECT_EQ(Entry("Anna@Firma.DE"), "anna@firma.de");
  EXPECT_EQ(Entry("o'neil+tag@mail.firma.de"), "o'neil+tag@mail.firma.de");
  EXPECT_EQ(Entry("@Firma.de"), "@firma.de");
  EXPECT_EQ(Entry("SHA256:" + std::string(64, 'A')), "sha256:" + std::string(64, 'a'));
  for (const char* text :
       {"", "firma.de", "anna", "@", "anna@", "a b@firma.de", "<anna@firma.de>", "a@b@c.de", "anna@firma,de",
        "anna@.de", "anna@firma..de", "anna@firma.de.", "*@firma.de", "sha256:", "sha256:12", "sha1:aaaa"}) {
    EXPECT_EQ(Entry(text), "") << text;
  }
  EXPECT_EQ(Entry("sha256:" + std::string(64, 'g')), "");
}

TEST_F(SuppressionTest, AnEntryHoldsForItsAddressInAnyLetterCase) {
  SuppressionList list = Loaded("Anna@Firma.de\n");
  EXPECT_FALSE(list.Keeps("anna@firma.de"));
  EXPECT_FALSE(list.Keeps("ANNA@firma.DE"));
  for (const char* other : {"joanna@firma.de", "anna@firma.dev", "anna@mail.firma.de", "anna@firma", ""}) {
    EXPECT_TRUE(list.Keeps(other)) << other;
  }
}

TEST_F(SuppressionTest, ADomainHoldsForItselfAlone) {
  SuppressionList list = Loaded("@firma.de\n");
  EXPECT_FALSE(list.Keeps("anna@firma.de"));
  EXPECT_FALSE(list.Keeps("Bert@FIRMA.de"));
  EXPECT_TRUE(list.Keeps("anna@mail.firma.de"));
  EXPECT_TRUE(list.Keeps("anna@xfirma.de"));
  EXPECT_EQ(list.EntryFor("anna@firma.de"), "@firma.de");
}

TEST_F(SuppressionTest, ADigestHoldsForItsAddressInAnyLetterCase) {
  EXPECT_EQ(DigestEntry("Abc"), "sha256:ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad");
  SuppressionList list = Loaded(DigestEntry("anna@firma.de") + "\n");
  EXPECT_FALSE(list.Keeps("anna@firma.de"));
  EXPECT_FALSE(list.Keeps("Anna@Firma.de"));
  EXPECT_TRUE(list.Keeps("bert@firma.de"));
}

TEST_F(SuppressionTest, TheDigestOfAListTellsOtherEntriesAndNamesNone) {
  EXPECT_EQ(Loaded("").Digest(), "");
  const std::string digest = Loaded("anna@firma.de\n@garden.de\n").Digest();
  EXPECT_EQ(Loaded("# who asked\nAnna@Firma.de\n@garden.de\n").Digest(), digest);
  EXPECT_NE(Loaded("anna@firma.de\n").Digest(), digest);
  EXPECT_EQ(digest.find("anna"), std::string::npos);
}

TEST_F(SuppressionTest, WithoutAFileNothingIsSuppressed) {
  Result<SuppressionList> list = Load();
  ASSERT_TRUE(list.ok());
  EXPECT_TRUE(list.value().empty());
  EXPECT_TRUE(list.value().Keeps("anna@firma.de"));
  EXPECT_EQ(files_.calls(), 0) << "the file is not even opened";
}

TEST_F(SuppressionTest, CommentsBlankLinesAndLineEndsOfEveryKindAreAllowed) {
  const SuppressionList list = Loaded(
      "\xEF\xBB\xBF# asked us\r\n\r\n  anna@firma.de  \r\n\tbert@firma.de\t# by letter\n#x@firma.de\n#1@firma.de\n"
      "a#b@firma.de\n@firma.fr");
  EXPECT_THAT(list.entries(), ElementsAre("anna@firma.de", "bert@firma.de", "a#b@firma.de", "@firma.fr"));
  EXPECT_THAT(messages_, IsEmpty());
}

TEST_F(SuppressionTest, LinesThatAreNoEntryAreToldOnceAndTheOthersHold) {
  const SuppressionList list = Loaded("anna@firma.de\nAnna Lund\nfirma.de\nbert@firma.de\n\xFF\xFE\n");
  EXPECT_THAT(list.entries(), ElementsAre("anna@firma.de", "bert@firma.de"));
  EXPECT_THAT(messages_, ElementsAre("/home/suppressed.txt: 3 lines are neither an address nor a domain nor a digest "
                                     "(line 2 is the first) !"));
}

TEST_F(SuppressionTest, AFileThatCannotBeReadIsAFailure) {
  files_.AddFolder(kPath);
  EXPECT_FALSE(Load().ok());
  EXPECT_NE(Load().status().message().find(kPath), std::string::npos) << Load().status().message();
}

TEST_F(SuppressionTest, ADiskThatFailsInTheMiddleIsAFailure) {
  files_.Put(kPath, "anna@firma.de\n");
  files_.FailCall(1);
  EXPECT_FALSE(Load().ok());
}

TEST_F(SuppressionTest, AFileThatIsNotATextIsAFailure) {
  files_.Put(kPath, std::string("\xFF\xFE"
                                "a\0n\0n\0a\0",
                                10));
  EXPECT_EQ(Load().status().kind(), StatusKind::kFormat);
}

TEST_F(SuppressionTest, AMillionEntriesAreReadAndLookedUpInSeconds) {
  std::string text;
  for (int i = 0; i < 500'000; ++i) text += "person" + std::to_string(i) + "@firma" + std::to_string(i % 977) + ".de\n";
  for (int i = 0; i < 500'000; ++i) {
    std::string digits = std::to_string(i);
    text += "sha256:" + std::string(64 - digits.size(), '0') + digits + "\n";
  }
  SuppressionList list = Loaded(text);
  EXPECT_EQ(list.entries().size(), 1'000'000u);
  for (int i = 0; i < 500'000; i += 5) {
    EXPECT_FALSE(list.Keeps("Person" + std::to_string(i) + "@firma" + std::to_string(i % 977) + ".de"));
  }
  for (int i = 0; i < 10'000; ++i) EXPECT_TRUE(list.Keeps("other" + std::to_string(i) + "@firma1.de"));
}

TEST_F(SuppressionTest, EntriesAreAddedBehindTheOthersAndOnlyOnce) {
  files_.Put(kPath, "# mine\r\nAnna@firma.de # by phone");
  const auto change = Change({"anna@firma.de", "bert@firma.de", "@firma.fr"});
  ASSERT_TRUE(change.ok());
  EXPECT_EQ(change.value().added, 2u);
  EXPECT_EQ(files_.Contents(kPath), "# mine\r\nAnna@firma.de # by phone\nbert@firma.de\n@firma.fr\n");
}

TEST_F(SuppressionTest, LinesAreTakenOutAndTheOthersStay) {
  files_.Put(kPath, "# mine\nanna@firma.de\nwhat is this\nbert@firma.de\n");
  const auto change = Change({}, [](std::string_view, std::string_view entry) { return entry == "anna@firma.de"; });
  ASSERT_TRUE(change.ok());
  EXPECT_EQ(change.value().removed, 1u);
  EXPECT_EQ(files_.Contents(kPath), "# mine\nwhat is this\nbert@firma.de\n");
}

TEST_F(SuppressionTest, AFileThatNeedsNoChangeIsNotWritten) {
  files_.Put(kPath, "anna@firma.de");
  ASSERT_TRUE(Change({"anna@firma.de"}).ok());
  EXPECT_EQ(files_.Contents(kPath), "anna@firma.de");
}

TEST_F(SuppressionTest, AChangeThatFailsLeavesTheFileWhole) {
  const std::string before = "anna@firma.de\n";
  for (int call = 1;; ++call) {
    files_.Put(kPath, before);
    files_.FailCall(call, StatusKind::kFull);
    const auto change = Change({"bert@firma.de"});
    files_.FailCall(0);
    if (change.ok()) {
      EXPECT_GT(call, 4) << "lock, read, replace, write, commit";
      break;
    }
    EXPECT_EQ(files_.Contents(kPath), before) << call;
  }
  EXPECT_EQ(files_.Contents(kPath), before + "bert@firma.de\n");
}

TEST_F(SuppressionTest, AFileThatCannotBeReadIsNotReplaced) {
  files_.Put(kPath, std::string("a\0b", 3));
  EXPECT_FALSE(Change({"bert@firma.de"}).ok());
  EXPECT_EQ(files_.Contents(kPath), std::string("a\0b", 3));
}

TEST_F(SuppressionTest, ASecondProgramThatChangesItIsRefused) {
  const auto lock = files_.Lock("/home", "suppressed.lock");
  ASSERT_TRUE(lock.ok());
  EXPECT_EQ(Change({"bert@firma.de"}).status().kind(), StatusKind::kBusy);
}

}  // namespace
}  // namespace quenlar
