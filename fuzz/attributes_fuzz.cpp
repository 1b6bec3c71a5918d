// Attribute values, texts between delimiters, cleaned texts and titles.
#include "base/ascii.h"
#include "fuzz/target.h"
#include "web/tag_text.h"

using namespace quenlar;

QUENLAR_FUZZ_TARGET(attributes) {
  fuzz::Feed feed(bytes);
  const std::string_view tag = feed.Text();
  for (const char* name : {"href=", "src="}) {
    const std::string value = GetAttributeValue(tag, name);
    FUZZ_CHECK(value.find(' ') == value.npos);
    FUZZ_CHECK(value.find("\r\n") == value.npos);
    FUZZ_CHECK(value.empty() || ContainsIgnoreCase(tag, name));
  }
  const std::string cleaned = CleanText(feed.Rest());
  FUZZ_CHECK(cleaned.size() <= feed.Rest().size());
  FUZZ_CHECK(cleaned.empty() || (cleaned.front() != ' ' && cleaned.back() != ' '));
  const std::string title = GetPageTitle(bytes);
  FUZZ_CHECK(title.find_first_of("\r\n\t") == title.npos);
  for (const SearchFrom from : {SearchFrom::kStart, SearchFrom::kEnd}) {
    const std::string_view between = TextBetween(bytes, "<r>", "</r>", from);
    FUZZ_CHECK(between.size() <= bytes.size());
  }
}
