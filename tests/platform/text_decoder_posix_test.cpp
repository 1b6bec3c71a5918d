// Charsets that only some systems know, on POSIX.
#include <gtest/gtest.h>

#include "platform_under_test.h"

namespace quenlar {
namespace {

TEST(TextDecoderPosix, KnowsTheJapaneseCharsetOfMail) {
  const auto platform = MakeTestPlatform();
  EXPECT_EQ(platform->text_decoder().ToUtf8(Charset::kIso2022Jp, "\x1B$B$3$s\x1B(B."), "こん.");
}

}  // namespace
}  // namespace quenlar
