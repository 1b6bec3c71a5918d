// Charsets that only some systems know, on Windows. Wine lacks the code page of ISO-2022-JP.
#include <gtest/gtest.h>

#include "platform/win32/windows_api.h"
#include "platform_under_test.h"

namespace quenlar {
namespace {

TEST(TextDecoderWin32, ReadsACharsetThatTheSystemLacksAsWindows1252) {
  const auto platform = MakeTestPlatform();
  const std::string bytes = "\x1B$B$3$s\x1B(B.";
  EXPECT_EQ(platform->text_decoder().ToUtf8(Charset::kIso2022Jp, bytes), IsValidCodePage(50220) ? "こん." : bytes);
}

}  // namespace
}  // namespace quenlar
