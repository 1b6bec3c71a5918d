#include "collection/script_text.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

namespace quenlar {
namespace {

std::string Escaped(std::string_view text) {
  std::string escaped;
  AppendScriptText(text, escaped);
  return escaped;
}

TEST(ScriptText, IsWrittenInASCIIWithoutMarkup) {
  const struct {
    std::string_view text, wanted;
  } kCases[] = {
      {"", R"("")"},
      {"plain text, 'quoted'", R"("plain text, 'quoted'")"},
      {R"(a "b" \c)", R"("a \u0022b\u0022 \u005cc")"},
      {"</script><!--", R"("\u003c/script\u003e\u003c!--")"},
      {"a & b", R"("a \u0026 b")"},
      {"\n\t\x7F", R"("\u000a\u0009\u007f")"},
      {{"\0x", 2}, R"("\u0000x")"},
      {"\xC3\xA9\xE2\x80\xA8\xE6\x97\xA5", R"("\u00e9\u2028\u65e5")"},
      {"\xF0\x9F\x98\x80", R"("\ud83d\ude00")"},
      {"a\xFF\xC3"
       "b\xED\xA0\x80",
       R"("a\ufffd\ufffdb\ufffd\ufffd\ufffd")"},
  };
  for (const auto& [text, wanted] : kCases) EXPECT_EQ(Escaped(text), wanted);
}

TEST(ScriptText, IsReadBackAsItWas) {
  std::string text;
  for (int byte = 0; byte < 0x80; ++byte) text += static_cast<char>(byte);
  text += "\xC2\x80\xDF\xBF\xE0\xA0\x80\xEF\xBF\xBF\xF0\x90\x80\x80\xF4\x8F\xBF\xBF";
  EXPECT_EQ(nlohmann::json::parse(Escaped(text)), text);
}

}  // namespace
}  // namespace quenlar
