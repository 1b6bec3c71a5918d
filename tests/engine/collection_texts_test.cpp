#include "engine/collection_texts.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "settings/web_settings.h"
#include "support/fake_registry.h"
#include "support/in_memory_files.h"

namespace quenlar {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

struct CollectionTextsTest : testing::Test {
  FakeRegistry registry;
  InMemoryFiles files;
  Settings settings;
  Installation installation;
  ProjectList projects{registry, settings};

  CollectionTextsTest() {
    installation.program_folder = "/q";
    files.AddFolder("/q/data");
  }
  void PutCollection(const std::string& name) { files.Put("/q/data/" + name + ".sqlite", ""); }
  [[nodiscard]] CollectionTexts Loaded() {
    CollectionTexts texts(registry, files, settings, installation, projects);
    texts.Load();
    return texts;
  }
  [[nodiscard]] NamedCollection Named(const std::string& text) {
    return CollectionOfText(text, settings, installation, files);
  }
};

TEST_F(CollectionTextsTest, ATextNamesACollectionAndItsStart) {
  settings.SearchLanguage = 2;
  const struct {
    const char *text, *name, *start, *language;
  } kCases[] = {
      {"www.example.org", "example_org", "www.example.org", "de"},
      {" https://www.example.org/a ", "example_org", "https://www.example.org/a", "de"},
      {"red cars", "red_cars_de", "red cars", "de"},
      {"red cars_fr", "red_cars_fr", "red cars", "fr"},
      {"cars_xx", "cars_xx", "cars_xx", "de"},
  };
  for (const auto& one : kCases) {
    const NamedCollection named = Named(one.text);
    EXPECT_EQ(named.name, one.name) << one.text;
    EXPECT_THAT(named.starts, ElementsAre(one.start));
    EXPECT_EQ(named.language, one.language) << one.text;
  }
  EXPECT_EQ(Named("").name, "");
  EXPECT_EQ(Named("  ").name, "");
}

TEST_F(CollectionTextsTest, TheNameOfACollectionThatExistsGoesOnWithoutAStart) {
  for (const char* name : {"members", "cars_xx", "example_org", "a.b"}) PutCollection(name);
  for (const char* name : {"members", "cars_xx", "example_org", "a.b"}) {
    EXPECT_EQ(Named(name).name, name);
    EXPECT_THAT(Named(name).starts, IsEmpty()) << name;
  }
  PutCollection("members_en");
  EXPECT_EQ(Named("members").name, "members_en") << "what a run of the text has made comes first";
}

TEST_F(CollectionTextsTest, ANameThatReadsAsAKeywordWithItsLanguage) {
  PutCollection("firma_de");  // of www.firma.de, or of "firma" in German
  EXPECT_EQ(Named("firma_de").name, "firma_de");
  EXPECT_TRUE(Named("firma_de").may_be_name);
  EXPECT_EQ(Named("firma_de").language, "de");
  EXPECT_FALSE(Named("firma").may_be_name);
  EXPECT_FALSE(Named("garten_de").may_be_name) << "there is no such collection";
  PutCollection("blog_de_example_org");
  EXPECT_EQ(Named("blog_de_example_org").name, "blog_de_example_org");
  EXPECT_THAT(Named("blog_de_example_org").starts, IsEmpty());
  PutCollection("blog_de");
  EXPECT_EQ(Named("blog_de_example_org").name, "blog_de_example_org") << "it is typed whole";
}

TEST_F(CollectionTextsTest, AnAddressWithoutADotGetsNoLanguage) {
  CollectionTexts texts = Loaded();
  texts.Add("http://localhost:8080/");
  EXPECT_THAT(texts.All(), ElementsAre("http://localhost:8080/"));
}

TEST_F(CollectionTextsTest, WhatWasPickedAndNeverRunIsNotStoredByTheNextRun) {
  projects.Load({"boats_en", "www.old.example"});
  CollectionTexts texts = Loaded();
  texts.Pick("www.old.example");
  EXPECT_THAT(texts.All(), ElementsAre("www.old.example", "boats_en"));
  texts.Add("www.one.example");
  texts.Store();
  projects.Load({});
  EXPECT_THAT(Loaded().All(), ElementsAre("www.one.example"));
}

TEST_F(CollectionTextsTest, EachIsOfferedOnce) {
  PutCollection("example_org");
  PutCollection("cars_en");
  PutCollection("other");
  projects.Load({"www.example.org", "boats_en"});
  CollectionTexts texts = Loaded();
  EXPECT_THAT(texts.All(), ElementsAre("cars_en", "other", "www.example.org", "boats_en"));
  EXPECT_FALSE(texts.Add("cars")) << "it is on top already";
  EXPECT_THAT(texts.All(), ElementsAre("cars_en", "other", "www.example.org", "boats_en"));
  EXPECT_TRUE(texts.Add("boats")) << "it goes to the top";
  EXPECT_THAT(texts.All(), ElementsAre("boats_en", "cars_en", "other", "www.example.org"));
  EXPECT_FALSE(texts.Add("cars_en"));
  EXPECT_TRUE(texts.Add("www.new.example"));
  EXPECT_THAT(texts.All(), ElementsAre("www.new.example", "boats_en", "cars_en", "other", "www.example.org"));
}

TEST_F(CollectionTextsTest, AreStoredBesideTheWebSettings) {
  CollectionTexts texts = Loaded();
  texts.Add("www.one.example");
  texts.Add("www.two.example");
  EXPECT_FALSE(registry.KeyExists(kProjectKey));
  EXPECT_THAT(Loaded().All(), ElementsAre("www.two.example", "www.one.example"));
  texts.Remove("www.two.example");
  texts.Store();
  EXPECT_THAT(Loaded().All(), ElementsAre("www.one.example"));
  for (const auto& [name, text] : registry.ValuesOf(kWebKey)) EXPECT_NE(text, "www.two.example") << name;
}

TEST_F(CollectionTextsTest, RemovingATextRemovesAllThatNameItsCollection) {
  CollectionTexts texts = Loaded();
  for (const char* text : {"www.one.example", "cars", "https://one.example/"}) texts.Add(text);
  texts.Remove("cars");
  EXPECT_THAT(texts.All(), ElementsAre("https://one.example/", "www.one.example"));
  texts.Remove("one.example");
  EXPECT_THAT(texts.All(), IsEmpty());
}

TEST_F(CollectionTextsTest, APickGoesToTheTopAndIsNotStored) {
  CollectionTexts texts = Loaded();
  texts.Add("www.one.example");
  texts.Add("www.two.example");
  projects.Load({"boats_en"});
  texts.Pick("www.one.example");
  EXPECT_THAT(texts.All(), ElementsAre("www.one.example", "www.two.example", "boats_en"));
  texts.Pick("boats_en");
  EXPECT_THAT(texts.All(), ElementsAre("boats_en", "www.one.example", "www.two.example"));
  EXPECT_THAT(Loaded().All(), ElementsAre("www.two.example", "www.one.example", "boats_en"));
}

TEST_F(CollectionTextsTest, AStoredCountThatIsNoneHarmsNothing) {
  for (const char* count : {"", "x", "-3", "99999999999"}) {
    registry.SaveRegValue(kWebKey, "CollectionNum", count);
    registry.SaveRegValue(kWebKey, "Collection1", "www.one.example");
    EXPECT_LE(Loaded().All().size(), 1u) << count;
  }
}

}  // namespace
}  // namespace quenlar
