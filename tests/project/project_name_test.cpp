#include "project/project_name.h"

#include <gtest/gtest.h>

namespace quenlar {
namespace {

struct Named {
  NamingOutcome outcome;
  Project project;
};

Named Name(std::string_view text, int language = 0, char separator = '\\') {
  Settings settings;
  settings.SearchLanguage = static_cast<std::int16_t>(language);
  Installation installation;
  installation.program_folder = separator == '\\' ? "C:\\Quenlar" : "/q";
  installation.separator = separator;
  Named named;
  named.outcome = NameProject(named.project, text, settings, installation);
  return named;
}

TEST(ProjectName, TextWithADotAnywhereIsAnAddress) {
  EXPECT_FALSE(IsKeywordText("picture.search"));
  EXPECT_FALSE(IsKeywordText("."));
  EXPECT_TRUE(IsKeywordText("picture search"));
  EXPECT_TRUE(IsKeywordText(""));
}

TEST(ProjectName, AddressesGiveStartUrlAndFiles) {
  struct Row {
    const char *text, *start_url, *name;
  };
  const Row rows[] = {
      {"x.de", "http://www.x.de", "x_de"},
      {"  http://www.x.de  ", "http://www.x.de", "x_de"},
      {"HTTP://WWW.X.de/Path", "http://WWW.X.de/Path", "X_de"},
      {"mail.x.de", "http://www.mail.x.de", "mail_x_de"},
      {"http://x.de/a/b.html?c=d", "http://www.x.de/a/b.html?c=d", "x_de"},
      {"www.a.b.com", "http://www.a.b.com", "a_b_com"},
      {"a_b.com", "http://www.a_b.com", "a_b_com"},
      {"https://x.de", "http://www.https://x.de", "https%3A"},
      {"x.de:8080/", "http://www.x.de:8080/", "x_de%3A8080"},
      {"..\\..\\x", "http://www...\\..\\x", "__%5C__%5Cx"},
      {"../../x", "http://www.../../x", "__"},
      {"www.", "http://www.", ""},
  };
  for (const Row& row : rows) {
    const Named named = Name(row.text);
    EXPECT_EQ(named.outcome, NamingOutcome::kNamed);
    EXPECT_FALSE(named.project.IsKeywordProject);
    EXPECT_EQ(named.project.StartURL, row.start_url) << row.text;
    EXPECT_EQ(named.project.DataFile, "C:\\Quenlar\\data\\" + std::string(row.name) + ".dat") << row.text;
    EXPECT_EQ(named.project.ReportFile, "C:\\Quenlar\\report\\" + std::string(row.name) + ".rpt") << row.text;
    EXPECT_EQ(named.project.Keyword, "");
    EXPECT_EQ(named.project.ProjectLanguage, "");
  }
}

TEST(ProjectName, HostKeepsUpperCaseAndThePathDoesNotEnterTheName) {
  EXPECT_EQ(Name("http://www.Example.ORG/Some/Path.html", 0, '/').project.DataFile, "/q/data/Example_ORG.dat");
}

TEST(ProjectName, KeywordTakesTheLanguageOfTheSetting) {
  const char* codes[] = {"en", "fr", "de", "it", "es", "ja"};
  for (int i = 0; i < 6; ++i) {
    const Project project = Name("red cars", i).project;
    const std::string code = codes[i];
    EXPECT_TRUE(project.IsKeywordProject);
    EXPECT_EQ(project.Keyword, "red+cars");
    EXPECT_EQ(project.StartURL,
              "http://www.google.com/search?hl=" + code + "&q=red+cars&btnG=Google+Search&num=100&start=0");
    EXPECT_EQ(project.DataFile, "C:\\Quenlar\\data\\red_cars_" + code + ".dat");
    EXPECT_EQ(project.ReportFile, "C:\\Quenlar\\report\\red_cars_" + code + ".rpt");
    EXPECT_EQ(project.ProjectLanguage, "");
  }
}

TEST(ProjectName, KeywordWithLeadingBlanksKeepsThem) {
  const Project project = Name("  cars ").project;
  EXPECT_EQ(project.Keyword, "++cars+");
  EXPECT_NE(project.StartURL.find("&q=++cars+&"), std::string::npos);
  EXPECT_EQ(project.DataFile, "C:\\Quenlar\\data\\__cars__en.dat");
}

TEST(ProjectName, UnknownLanguageLeavesAllNamesAsTheyWere) {
  Settings settings;
  settings.SearchLanguage = 9;
  Project project;
  project.Keyword = "old";
  project.StartURL = "http://old";
  project.DataFile = "/old.dat";
  project.ReportFile = "/old.rpt";
  EXPECT_EQ(NameProject(project, "cars", settings, Installation()), NamingOutcome::kUnknownLanguage);
  EXPECT_TRUE(project.IsKeywordProject);
  EXPECT_EQ(project.Keyword, "old");
  EXPECT_EQ(project.StartURL, "http://old");
  EXPECT_EQ(project.DataFile, "/old.dat");
  EXPECT_EQ(project.ReportFile, "/old.rpt");
}

TEST(ProjectName, SuffixNamesTheLanguageInEitherLetterCase) {
  const Project project = Name("red cars_FR", 4).project;
  EXPECT_EQ(project.Keyword, "red+cars");
  EXPECT_EQ(project.ProjectLanguage, "fr");
  EXPECT_NE(project.StartURL.find("hl=fr&q=red+cars&"), std::string::npos);
  EXPECT_EQ(project.DataFile, "C:\\Quenlar\\data\\red_cars_fr.dat");
}

TEST(ProjectName, JapaneseSuffixStoresSpanishAsTheProjectLanguage) {
  const Project project = Name("cars_ja").project;
  EXPECT_EQ(project.ProjectLanguage, "es");
  EXPECT_NE(project.StartURL.find("hl=ja&"), std::string::npos);
  EXPECT_EQ(project.DataFile, "C:\\Quenlar\\data\\cars_ja.dat");
}

TEST(ProjectName, OnlyTheSecondPieceCountsAsSuffix) {
  EXPECT_EQ(Name("new_york_en").outcome, NamingOutcome::kUnknownSuffix);
  EXPECT_EQ(Name("cars_jp").outcome, NamingOutcome::kUnknownSuffix);
  EXPECT_EQ(Name("cars_").outcome, NamingOutcome::kUnknownSuffix);
  const Named named = Name("cars_en_and_more");
  EXPECT_EQ(named.outcome, NamingOutcome::kNamed);
  EXPECT_EQ(named.project.DataFile, "C:\\Quenlar\\data\\cars_en.dat");
  EXPECT_EQ(Name("_en").project.DataFile, "C:\\Quenlar\\data\\_en.dat");
}

TEST(ProjectName, SearchAddressCarriesTheResultOffset) {
  Installation installation;
  installation.search_engine = "http://127.0.0.1:8000";
  EXPECT_EQ(SearchAddress(installation, "it", "a+b", 300),
            "http://127.0.0.1:8000/search?hl=it&q=a+b&btnG=Google+Search&num=100&start=300");
}

TEST(SafeFileName, EncodesWhatAWindowsFileNameCannotHold) {
  struct Row {
    std::string name, safe;
  };
  const Row rows[] = {
      {"a\\b/c:d*e?f\"g<h>i|j", "a%5Cb%2Fc%3Ad%2Ae%3Ff%22g%3Ch%3Ei%7Cj"},
      {std::string("a\0b\x1f\x7f", 5), "a%00b%1F%7F"},
      {"dot.", "dot%2E"},
      {"blank ", "blank%20"},
      {".", "%2E"},
      {"..", ".%2E"},
      {"con", "%63on"},
      {"NUL.dat", "%4EUL.dat"},
      {"com1", "%63om1"},
      {"LPT9.x.y", "%4CPT9.x.y"},
      {"aux .txt", "%61ux .txt"},
      {"COM\xC2\xB2", "%43OM\xC2\xB2"},
      {"ExtractFilter", "%45xtractFilter"},
  };
  for (const Row& row : rows) EXPECT_EQ(SafeFileName(row.name), row.safe) << row.name;
}

TEST(SafeFileName, LeavesEveryOtherNameAsItIs) {
  for (const char* name : {"", "x_de", "100% real+name", "a b", "M\xC3\xBCller", "com0", "com10", "console", "lpt",
                           " x", ".hidden", "a.b", "it's (a) [name] {of} #many @signs; ok,=!$&~^`"}) {
    EXPECT_EQ(SafeFileName(name), name);
  }
}

TEST(SafeFileName, CutsLongNamesAndTellsThemApartByAHash) {
  const std::string exact(200, 'a');
  EXPECT_EQ(SafeFileName(exact), exact);
  const std::string one = SafeFileName(std::string(300, 'a') + "1");
  const std::string two = SafeFileName(std::string(300, 'a') + "2");
  EXPECT_LE(one.size(), 200u);
  EXPECT_NE(one, two);
  EXPECT_EQ(one, SafeFileName(std::string(300, 'a') + "1"));
  EXPECT_TRUE(one.starts_with(std::string(150, 'a')));
  for (int shift = 0; shift < 4; ++shift) {  // no cut inside a character or a percent code
    const std::string wide = SafeFileName(std::string(shift, 'a') + std::string(100, '?') + "end");
    EXPECT_EQ(wide.substr(shift, wide.size() - shift - 17).size() % 3, 0u);
    std::string accents;
    for (int i = 0; i < 150; ++i) accents += "\xC3\xBC";
    const std::string cut = SafeFileName(std::string(shift, 'a') + accents);
    EXPECT_EQ((cut.size() - 17 - shift) % 2, 0u);
  }
}

TEST(SafeFileName, NeverLeavesItsFolder) {
  for (const char* text : {"..\\..\\a", "../../etc/passwd", "/", "\\", "a/../../b", "c:\\x", "..", "_/../x", "www.../x",
                           "../x_en", "a\\..\\b_fr"}) {
    const Project project = Name(text, 0, '/').project;
    ASSERT_TRUE(project.DataFile.starts_with("/q/data/")) << text;
    ASSERT_TRUE(project.ReportFile.starts_with("/q/report/")) << text;
    EXPECT_EQ(project.DataFile.find_first_of("/\\:", 8), std::string::npos) << project.DataFile;
    EXPECT_EQ(project.ReportFile.find_first_of("/\\:", 10), std::string::npos) << project.ReportFile;
  }
}

}  // namespace
}  // namespace quenlar
