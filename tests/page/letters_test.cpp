// Kinds of letters, and the characters before and behind a place.
#include "page/letters.h"

#include <string_view>

#include <gtest/gtest.h>

namespace quenlar {
namespace {

TEST(LettersTest, ScriptsThatPartTheirWordsAreToldFromThoseThatDoNot) {
  for (const char32_t code : std::u32string_view(U"üßéжΩאبकিఅაאñŁ\u0308\u0660\U00010400")) {
    EXPECT_EQ(KindOfLetter(code), LetterKind::kParted) << std::hex << static_cast<unsigned>(code);
  }
  for (const char32_t code : std::u32string_view(U"中々あアー한ㄅภລខམ０ｱ\U00020000")) {
    EXPECT_EQ(KindOfLetter(code), LetterKind::kUnparted) << std::hex << static_cast<unsigned>(code);
  }
  for (const char32_t code : std::u32string_view(U"\u00A0\u00D7\u00AB–“”…€→✉。、「＠\uFFFD\U0001F4E7")) {
    EXPECT_EQ(KindOfLetter(code), LetterKind::kNone) << std::hex << static_cast<unsigned>(code);
  }
  for (const char32_t code : std::u32string_view(U"\u00AD\u200B\u200D\u2060\uFE0F\uFEFF")) {
    EXPECT_EQ(KindOfLetter(code), LetterKind::kInvisible) << std::hex << static_cast<unsigned>(code);
  }
}

TEST(LettersTest, TheCharacterAtAPlaceAndBeforeItIsReadWhole) {
  const std::string_view text = "xü中\U00020000x";
  EXPECT_EQ(LetterAt(text, 1).bytes, 2u);
  EXPECT_EQ(LetterAt(text, 3).bytes, 3u);
  EXPECT_EQ(LetterAt(text, 6).bytes, 4u);
  EXPECT_EQ(LetterBefore(text, 3).bytes, 2u);
  EXPECT_EQ(LetterBefore(text, 6).bytes, 3u);
  EXPECT_EQ(LetterBefore(text, 10).bytes, 4u);
  EXPECT_EQ(LetterBefore(text, 3).kind, LetterKind::kParted);
  EXPECT_EQ(LetterBefore(text, 10).kind, LetterKind::kUnparted);
}

TEST(LettersTest, BytesThatAreNoCharacterAreNoLetters) {
  for (const std::string_view text : {"\xFF", "\xC3", "\xE4\xB8", "\xBC", "\xC0\xAF", "\xED\xA0\x80"}) {
    EXPECT_EQ(LetterAt(text, 0).kind, LetterKind::kNone);
    EXPECT_EQ(LetterAt(text, 0).bytes, 1u);
    EXPECT_EQ(LetterBefore(text, text.size()).kind, LetterKind::kNone);
    EXPECT_EQ(LetterBefore(text, text.size()).bytes, 1u);
  }
}

}  // namespace
}  // namespace quenlar
