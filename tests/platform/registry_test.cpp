// The contract of Registry.
#include "platform/registry.h"

#include <string>

#include "platform_under_test.h"

namespace quenlar {
namespace {

class RegistryContract : public PlatformContract {
 protected:
  Registry& registry_ = platform_->registry();
  const std::string key_ = platform_->RegistryKey();
};
INSTANTIATE_TEST_SUITE_P(Platforms, RegistryContract, testing::Values(MakeTestPlatform, MakeFakeTestPlatform),
                         PlatformName);

TEST_P(RegistryContract, AValueIsReadBackAsItWasWritten) {
  for (const char* text :
       {"99999", "0", "a b", " leading and trailing ", "=;#[]\\\"'%n", "tab\tand line\r\nend", "m\xC3\xBCller", "-"}) {
    registry_.SaveRegValue(key_, "Value", text);
    EXPECT_EQ(registry_.GetRegValue(key_, "Value"), text);
    EXPECT_TRUE(registry_.ValueExists(key_, "Value"));
  }
}

TEST_P(RegistryContract, TheNextStartFindsWhatThisOneWrote) {
  registry_.SaveRegValue(key_, "StopNumber", "70000");
  registry_.SaveRegValue(key_, "Project1", "\xC2\xA0picture search \\ # [x]\r\ny=z ");
  registry_.SaveRegValue(key_, "Save", "1");
  registry_.SaveRegValue(key_, "Save", "2");
  platform_->loop().Yield();
  const auto next = platform_->ReopenRegistry();
  EXPECT_TRUE(next->KeyExists(key_));
  EXPECT_EQ(next->GetRegValue(key_, "StopNumber"), "70000");
  EXPECT_EQ(next->GetRegValue(key_, "Project1"), "\xC2\xA0picture search \\ # [x]\r\ny=z ");
  EXPECT_EQ(next->GetRegValue(key_, "Save"), "2");
}

TEST_P(RegistryContract, AMissingKeyGivesEmptyText) {
  EXPECT_FALSE(registry_.KeyExists(key_));
  EXPECT_FALSE(registry_.ValueExists(key_, "Search"));
  EXPECT_EQ(registry_.GetRegValue(key_, "Search"), "");
}

TEST_P(RegistryContract, AMissingValueOfAnExistingKeyGives254Blanks) {
  registry_.SaveRegValue(key_, "Search", "1");
  EXPECT_FALSE(registry_.ValueExists(key_, "Save"));
  EXPECT_EQ(registry_.GetRegValue(key_, "Save"), std::string(254, ' '));
}

TEST_P(RegistryContract, AnEmptyValueIsEmptyAndExists) {
  registry_.SaveRegValue(key_, "Value", "");
  EXPECT_TRUE(registry_.ValueExists(key_, "Value"));
  EXPECT_EQ(registry_.GetRegValue(key_, "Value"), "");
}

TEST_P(RegistryContract, AtMost254CharactersAreReadBack) {
  const std::string most(254, 'x');
  registry_.SaveRegValue(key_, "Value", most);
  EXPECT_EQ(registry_.GetRegValue(key_, "Value"), most);
  registry_.SaveRegValue(key_, "Value", std::string(300, 'y'));
  EXPECT_LE(registry_.GetRegValue(key_, "Value").size(), 254u);
  EXPECT_TRUE(registry_.ValueExists(key_, "Value"));
}

TEST_P(RegistryContract, KeysAndNamesIgnoreTheCaseOfLetters) {
  registry_.SaveRegValue(key_, "StopNumber", "7");
  std::string upper = key_;
  for (char& c : upper) c = c >= 'a' && c <= 'z' ? static_cast<char>(c - 32) : c;
  EXPECT_TRUE(registry_.KeyExists(upper));
  EXPECT_EQ(registry_.GetRegValue(upper, "STOPNUMBER"), "7");
  registry_.SaveRegValue(upper, "stopnumber", "8");
  EXPECT_EQ(registry_.GetRegValue(key_, "StopNumber"), "8");
}

TEST_P(RegistryContract, ADeletedKeyIsGoneWithItsValues) {
  registry_.SaveRegValue(key_, "Search", "1");
  registry_.DeleteRegKey(key_);
  EXPECT_FALSE(registry_.KeyExists(key_));
  EXPECT_EQ(registry_.GetRegValue(key_, "Search"), "");
  registry_.SaveRegValue(key_, "Save", "1");
  EXPECT_EQ(registry_.GetRegValue(key_, "Search"), std::string(254, ' '));
}

TEST_P(RegistryContract, DeletingAKeyThatIsNotThereDoesNothing) {
  registry_.DeleteRegKey(key_ + "\\None");
  EXPECT_FALSE(registry_.KeyExists(key_));
}

TEST_P(RegistryContract, KeysAreApart) {
  registry_.SaveRegValue(key_ + "\\1", "Value", "one");
  registry_.SaveRegValue(key_ + "\\2", "Value", "two");
  registry_.DeleteRegKey(key_ + "\\1");
  EXPECT_FALSE(registry_.KeyExists(key_ + "\\1"));
  EXPECT_EQ(registry_.GetRegValue(key_ + "\\2", "Value"), "two");
  registry_.DeleteRegKey(key_ + "\\2");
}

TEST_P(RegistryContract, AKeyWithKeysBelowItStays) {
  registry_.SaveRegValue(key_ + "\\Below", "Value", "x");
  EXPECT_TRUE(registry_.KeyExists(key_));
  registry_.DeleteRegKey(key_);
  EXPECT_TRUE(registry_.KeyExists(key_));
  EXPECT_EQ(registry_.GetRegValue(key_ + "\\Below", "Value"), "x");
  registry_.DeleteRegKey(key_ + "\\Below");
  registry_.DeleteRegKey(key_);
  EXPECT_FALSE(registry_.KeyExists(key_));
}

TEST_P(RegistryContract, ThousandsOfValuesAreWrittenInAMoment) {
  for (int i = 1; i <= 3000; ++i) registry_.SaveRegValue(key_, "Project" + std::to_string(i), "p" + std::to_string(i));
  platform_->loop().Yield();
  const auto next = platform_->ReopenRegistry();
  EXPECT_EQ(next->GetRegValue(key_, "Project1"), "p1");
  EXPECT_EQ(next->GetRegValue(key_, "Project3000"), "p3000");
}

}  // namespace
}  // namespace quenlar
