#include "base/windows1252.h"

#include <string>

#include <gtest/gtest.h>

namespace quenlar {
namespace {

TEST(Windows1252, KnowsCharactersOfOneTwoAndThreeBytes) {
  EXPECT_EQ(Windows1252ToUtf8("a\xE4z"), "a\xC3\xA4z");
  EXPECT_EQ(Windows1252ToUtf8("\x80"), "\xE2\x82\xAC");
  EXPECT_EQ(Windows1252ToUtf8("\x81"), "\xC2\x81");  // not assigned: the control character
  EXPECT_EQ(Windows1252ToUtf8("\x99"), "\xE2\x84\xA2");
  EXPECT_EQ(Windows1252ToUtf8("\xFF"), "\xC3\xBF");
}

TEST(Windows1252, ConvertsEveryByteAtEveryPlaceAndBack) {
  for (int byte = 0; byte < 256; ++byte) {
    const std::string alone = Windows1252ToUtf8(std::string(1, static_cast<char>(byte)));
    EXPECT_EQ(Utf8ToWindows1252(alone), std::string(1, static_cast<char>(byte)));
    for (std::size_t at = 0; at < 20; ++at) {
      std::string text(20, 'x');
      text[at] = static_cast<char>(byte);
      ASSERT_EQ(Windows1252ToUtf8(text), std::string(at, 'x') + alone + std::string(19 - at, 'x'));
    }
  }
}

TEST(Windows1252, ConvertsLongTexts) {
  for (std::size_t size = 1000; size < 1100; ++size) {
    std::string text(size, '\x80'), expected;
    for (std::size_t i = 0; i < size; i += 3) text[i] = 'x';
    for (std::size_t i = 0; i < size; ++i) expected += i % 3 == 0 ? "x" : "\xE2\x82\xAC";
    ASSERT_EQ(Windows1252ToUtf8(text), expected);
  }
}

TEST(Windows1252, IsAsciiLooksAtEveryByte) {
  for (std::size_t size = 0; size < 80; ++size) {
    std::string text(size, '\x7F');
    EXPECT_TRUE(IsAscii(text));
    for (std::size_t at = 0; at < size; ++at) {
      text[at] = '\x80';
      EXPECT_FALSE(IsAscii(text)) << size << " " << at;
      text[at] = '\x7F';
    }
  }
}

}  // namespace
}  // namespace quenlar
