#include "archive/harvest.h"

#include <gtest/gtest.h>

#include "harvest_world.h"
#include "warc_text.h"

namespace quenlar {
namespace {

class HarvestTest : public testing::Test {
 protected:
  // The report of an input "/a" with so many damaged records.
  static std::string Damaged(std::size_t count) {
    return "/a " + std::to_string(static_cast<int>(InputKind::kWarc)) + " " + std::to_string(count);
  }
  static std::string Row(const std::string& name) { return name + "@firma.de http://www.firma.de/" + name; }

  HarvestWorld world;
};

// A text that does not pack well, so that members are large.
std::string Filler(std::size_t size) {
  std::string text = "<p>";
  for (unsigned i = 1; text.size() < size; i = i * 1103515245u + 12345u) text += std::to_string(i) + " ";
  return text;
}
std::string LargePage(const std::string& name, std::size_t size) {
  RecordText how;
  how.target += name;
  return WarcText(how, HttpText(Filler(size) + name + "@firma.de</p>"));
}

TEST_F(HarvestTest, PagesOfAnArchiveComeInTheirOrder) {
  const std::string archive = PageRecord("b") + PageRecord("a") + PageRecord("c");
  const std::string rows = Row("b") + "," + Row("a") + "," + Row("c");
  EXPECT_EQ(world.Of(archive), rows);
  EXPECT_EQ(world.Of(Gzip(archive)), rows);
  EXPECT_EQ(world.Of(Gzip(PageRecord("b")) + Gzip(PageRecord("a")) + Gzip(PageRecord("c"))), rows);
  EXPECT_EQ(world.reports, std::vector<std::string>{Damaged(0)});
}

TEST_F(HarvestTest, RecordsOverTheEndsOfMembersAreRead) {
  const std::string archive = PageRecord("a") + LargePage("b", 300'000) + PageRecord("c");
  for (const std::size_t block : {1u, 7u, 1000u, 65280u}) {
    std::string packed;
    for (std::size_t at = 0; at < archive.size(); at += block) {
      if (block < 100 && packed.size() > 200'000) {  // small blocks at the beginning alone
        packed += Gzip(std::string_view(archive).substr(at));
        break;
      }
      packed += Gzip(std::string_view(archive).substr(at, block));
    }
    EXPECT_EQ(world.Of(packed + Gzip("")), Row("a") + "," + Row("b") + "," + Row("c")) << block;
    EXPECT_EQ(world.reports, std::vector<std::string>{Damaged(0)});
  }
}

TEST_F(HarvestTest, RecordsLargerThanABatchAreRead) {
  std::string archive = PageRecord("a");
  for (const char* const name : {"b", "c", "d"}) archive += LargePage(name, 3'000'000);
  const std::string rows = Row("a") + "," + Row("b") + "," + Row("c") + "," + Row("d");
  EXPECT_EQ(world.Of(archive), rows);
  EXPECT_EQ(world.Of(Gzip(archive)), rows);
  EXPECT_EQ(world.reports, std::vector<std::string>{Damaged(0)});
  archive.insert(archive.find("Length: 3", 4'000'000) + 8, "1");
  EXPECT_EQ(world.Of(archive), rows);
  EXPECT_EQ(world.reports, std::vector<std::string>{Damaged(1)});
}

TEST_F(HarvestTest, OnlyAnswersThatHoldPagesAreRead) {
  const auto page = [](const std::string& name, RecordText how) { return PageRecord(name, std::move(how)); };
  std::string archive = WarcText({.type = "warcinfo", .target = ""}, "software: x@firma.de");
  archive += page("request", {.type = "request"}) + page("revisit", {.type = "revisit"});
  archive += page("metadata", {.type = "metadata"}) + page("robots.txt", {});
  archive += page("ftp", {.target = "ftp://www.firma.de/"}) + page("dns", {.target = "dns:firma.de"});
  archive += page("long", {.target = "http://www.firma.de/" + std::string(2083, 'x')});
  archive += WarcText({}, "HTTP/1.1 404 Not Found\r\nContent-Type: text/html\r\n\r\nlost@firma.de");
  archive += WarcText({}, HttpText("picture@firma.de", "Content-Type: image/png\r\n"));
  archive += WarcText({}, "not HTTP: other@firma.de");
  EXPECT_EQ(world.Of(archive + PageRecord("good")), Row("good"));
  EXPECT_EQ(world.pages, 1u);
  EXPECT_EQ(world.reports, std::vector<std::string>{Damaged(0)});
}

TEST_F(HarvestTest, ResourcesAndConversionsArePagesToo) {
  const std::string archive =
      WarcText({.type = "resource", .content_type = "text/html"}, "<a href='mailto:one@firma.de'>x</a>") +
      WarcText({.type = "conversion", .content_type = "text/plain"}, "two@firma.de") +
      WarcText({.type = "resource", .content_type = "image/gif"}, "three@firma.de") +
      WarcText({.type = "resource", .content_type = ""}, "four@firma.de");
  EXPECT_EQ(world.Of(archive),
            "one@firma.de http://www.firma.de/,two@firma.de http://www.firma.de/,"
            "four@firma.de http://www.firma.de/");
}

TEST_F(HarvestTest, ThePageIsTheUrlAndTheTimeThatOfTheRecord) {
  EXPECT_EQ(world.Of(PageRecord("x", {.target = "<HTTP://WWW.Firma.de:80/a b/../"})), "");
  EXPECT_EQ(world.Of(WarcText({.target = "<HTTP://WWW.Firma.de:80/a b/../c#d>"}, HttpText("x@firma.de"))),
            "x@firma.de http://www.firma.de/c");
  EXPECT_EQ(world.last.seen, 1'795'353'632);
  EXPECT_EQ(world.last.status, 200);
  (void)world.Of(PageRecord("x", {.date = ""}));
  EXPECT_FALSE(world.last.seen);
}

TEST_F(HarvestTest, PagesThatDoNotWantToBeIndexedAreLeftOutUnlessRobotsAreIgnored) {
  const std::string archive = WarcText({}, HttpText("<meta name=robots content=noindex>a@firma.de")) +
                              WarcText({}, HttpText("b@firma.de", "X-Robots-Tag: none\r\n"));
  EXPECT_EQ(world.Of(archive), "");
  world.obey_robots = false;
  EXPECT_EQ(world.Of(archive), "a@firma.de http://www.firma.de/,b@firma.de http://www.firma.de/");
}

TEST_F(HarvestTest, AnAddressComesOncePerRecordInItsFirstSpelling) {
  EXPECT_EQ(world.Of(WarcText({}, HttpText("<a href='mailto:A@firma.de'>a@firma.de</a> B@firma.de b@firma.de"))),
            "A@firma.de http://www.firma.de/,B@firma.de http://www.firma.de/");
  EXPECT_EQ(world.last.addresses.size(), 3u);
}

TEST_F(HarvestTest, PackedAndChunkedBodiesAreRead) {
  const std::string fields = "Content-Type: text/html\r\nContent-Encoding: gzip\r\nContent-Length: 5\r\n";
  EXPECT_EQ(world.Of(WarcText({}, HttpText(Gzip("<p>a@firma.de"), fields))), "a@firma.de http://www.firma.de/");
}

TEST_F(HarvestTest, ADamagedMemberCostsNoMoreThanItself) {
  const std::string one = Gzip(PageRecord("one")), two = Gzip(LargePage("two", 5000)),
                    three = Gzip(PageRecord("three"));
  std::string flipped = two;
  flipped[flipped.size() / 2] = static_cast<char>(~flipped[flipped.size() / 2]);
  for (const std::string& damaged : {flipped, two.substr(0, two.size() / 2), two.substr(0, 9), std::string("junk"),
                                     two.substr(10), two.substr(0, two.size() - 9)}) {
    const std::string rows = world.Of(one + damaged + three);
    EXPECT_TRUE(rows.starts_with(Row("one"))) << rows;
    EXPECT_TRUE(rows.ends_with(Row("three"))) << rows;
    EXPECT_EQ(world.reports, std::vector<std::string>{Damaged(1)});
  }
}

TEST_F(HarvestTest, OfATornMemberWhatStandsBeforeTheTearIsRead) {
  const std::string record = WarcText({}, HttpText("<p>early@firma.de" + Filler(50'000) + "late@firma.de"));
  const std::string packed = Gzip(record);
  EXPECT_EQ(world.Of(Gzip(PageRecord("one")) + packed.substr(0, packed.size() / 2)),
            Row("one") + ",early@firma.de http://www.firma.de/");
  EXPECT_EQ(world.reports, std::vector<std::string>{Damaged(1)});
}

TEST_F(HarvestTest, AWrongChecksumIsDamageAndTheTextIsRead) {
  std::string packed = Gzip(PageRecord("one"));
  packed[packed.size() - 6] = static_cast<char>(~packed[packed.size() - 6]);
  EXPECT_EQ(world.Of(packed + Gzip(PageRecord("two"))), Row("one") + "," + Row("two"));
  EXPECT_EQ(world.reports, std::vector<std::string>{Damaged(1)});
}

TEST_F(HarvestTest, WrongLengthsInMembersSwallowNothing) {
  for (const std::ptrdiff_t wrong : {-20, 40, 100'000, 1'000'000'000}) {
    const std::string archive = Gzip(PageRecord("one", {.wrong_length = wrong})) + Gzip(PageRecord("two"));
    EXPECT_EQ(world.Of(archive), Row("one") + "," + Row("two")) << wrong;
    EXPECT_EQ(world.reports, std::vector<std::string>{Damaged(1)});
  }
}

TEST_F(HarvestTest, PaddingBetweenMembersIsNoDamage) {
  const std::string nuls(100'000, '\0');
  EXPECT_EQ(world.Of(Gzip(PageRecord("one")) + nuls + Gzip(PageRecord("two")) + nuls), Row("one") + "," + Row("two"));
  EXPECT_EQ(world.Of(PageRecord("one") + nuls + PageRecord("two") + nuls), Row("one") + "," + Row("two"));
  EXPECT_EQ(world.reports, std::vector<std::string>{Damaged(0)});
}

TEST_F(HarvestTest, ARecordLargerThanMemoryIsPassedOver) {
  const std::string large(80u << 20, 'x');
  const std::string archive =
      PageRecord("one") + WarcText({}, HttpText("<p>begin@firma.de " + large + " end@firma.de")) + PageRecord("two");
  const std::string rows = Row("one") + ",begin@firma.de http://www.firma.de/," + Row("two");
  EXPECT_EQ(world.Of(archive), rows);
  EXPECT_EQ(world.reports, std::vector<std::string>{Damaged(0)});
  EXPECT_EQ(world.Of(Gzip(PageRecord("one")) + Deflated(archive.substr(PageRecord("one").size()), 31, 1)), rows);
  EXPECT_EQ(world.reports, std::vector<std::string>{Damaged(0)});
}

TEST_F(HarvestTest, ALengthThatIsMuchTooLargeSwallowsNothingInABlock) {
  std::string archive = PageRecord("one", {.wrong_length = 200u << 20}) + PageRecord("two") + PageRecord("three");
  archive += WarcText({.type = "metadata"}, std::string(kWarcWindow, 'x'));
  EXPECT_EQ(world.Of(archive), Row("one") + "," + Row("two") + "," + Row("three"));
  EXPECT_EQ(world.reports, std::vector<std::string>{Damaged(2)});
}

TEST_F(HarvestTest, FilesArePagesWithTheirPathAndTime) {
  EXPECT_EQ(world.Of("<html><a href='mailto:a%40firma.de'>x</a>"), "a@firma.de /a");
  EXPECT_EQ(world.last.seen, InMemoryFiles::kModified);
  EXPECT_EQ(world.Of("some text: a@firma.de, <b@firma.de>"), "a@firma.de /a,b@firma.de /a");
  EXPECT_EQ(world.Of(Gzip("<p>a@firma.de")), "a@firma.de /a");
  EXPECT_EQ(world.Of(std::string("\xFF\xFE<\0p\0>\0a\0@\0f\0.\0d\0e\0", 20)), "a@f.de /a");
}

TEST_F(HarvestTest, StandardInputIsAnArchiveOrOnePage) {
  for (const bool packed : {false, true}) {
    world.standard_input = PageRecord("one") + PageRecord("two");
    if (packed) world.standard_input = Gzip(PageRecord("one")) + Gzip(PageRecord("two"));
    EXPECT_EQ(world.Run({"-"}), Row("one") + "," + Row("two"));
  }
  world.standard_input = std::string("\0\1 binary a@firma.de", 20);
  EXPECT_EQ(world.Run({"-"}), "a@firma.de -");
  EXPECT_FALSE(world.last.seen);
  world.standard_input = "";
  EXPECT_EQ(world.Run({"-"}), "");
}

TEST_F(HarvestTest, PaddingBeforeTheFirstRecordIsPassedOver) {
  const std::string archive = WarcText({}, HttpText("a@firma.de"));
  const std::string rows = world.Of(archive);
  EXPECT_TRUE(rows.starts_with("a@firma.de http")) << rows;
  for (const std::string& padding : {std::string("\r\n\r\n"), std::string("\n"), std::string(600, '\0')}) {
    EXPECT_EQ(world.Of(padding + archive), rows);
    EXPECT_EQ(world.reports.front(), "/a " + std::to_string(static_cast<int>(InputKind::kWarc)) + " 0");
    EXPECT_EQ(world.Of(Gzip(padding + archive)), rows);
  }
}

TEST_F(HarvestTest, OtherKindsAreTold) {
  const auto report = [&](const std::string& bytes) {
    (void)world.Of(bytes);
    return world.reports.empty() ? "" : world.reports.front();
  };
  const auto kind = [](InputKind of) { return "/a " + std::to_string(static_cast<int>(of)) + " 0"; };
  EXPECT_EQ(report(""), kind(InputKind::kEmpty));
  EXPECT_EQ(report(Gzip("")), kind(InputKind::kEmpty));
  EXPECT_EQ(report("filedesc://x.arc 0.0.0.0 20200101000000 text/plain 1\n"), kind(InputKind::kArc));
  EXPECT_EQ(report(Gzip("filedesc://x.arc")), kind(InputKind::kArc));
  EXPECT_EQ(report("\x89PNG\r\n\x1a\n a@firma.de"), kind(InputKind::kOther));
  EXPECT_EQ(report("%PDF-1.4 a@firma.de"), kind(InputKind::kOther));
  EXPECT_EQ(report(Gzip(Gzip("x"))), kind(InputKind::kGzip));
}

TEST_F(HarvestTest, FoldersGiveTheirFilesByNameAndOthersGoOnAfterAFailure) {
  world.files.AddFolder("/f/b");
  world.files.Put("/f/c.txt", "c@firma.de");
  world.files.Put("/f/b/x.html", "<p>b@firma.de");
  world.files.Put("/f/a.txt", "a@firma.de");
  world.files.Put("/f/B.bin", std::string("\0", 1));
  EXPECT_EQ(world.Run({"/missing", "/f"}), "a@firma.de /f/a.txt,b@firma.de /f/b/x.html,c@firma.de /f/c.txt");
  EXPECT_EQ(world.reports.front(), "/missing failed");
  EXPECT_EQ(world.Run({"/f/"}), "a@firma.de /f/a.txt,b@firma.de /f/b/x.html,c@firma.de /f/c.txt");
}

TEST_F(HarvestTest, OfTornFilesInAFolderThoseOfOtherContentAreNoDamage) {
  const std::string picture = Gzip("\x89PNG\r\n\x1A\n" + std::string(300, 'p')), page = Gzip("<p>a@firma.de and more");
  world.files.AddFolder("/f");
  world.files.Put("/f/picture.gz", picture.substr(0, picture.size() - 3));
  world.files.Put("/f/site.gz", page.substr(0, page.size() - 3));
  const auto report = [](const std::string& name, InputKind kind, int damaged) {
    return name + " " + std::to_string(static_cast<int>(kind)) + " " + std::to_string(damaged);
  };
  EXPECT_EQ(world.Run({"/f", "/f/picture.gz"}), "a@firma.de /f/site.gz");
  const std::vector<std::string> expected = {report("/f/picture.gz", InputKind::kOther, 0),
                                             report("/f/site.gz", InputKind::kHtml, 1),
                                             report("/f/picture.gz", InputKind::kOther, 1)};
  EXPECT_EQ(world.reports, expected);
}

}  // namespace
}  // namespace quenlar
