// Attribute values and cleaned texts against their literal references, texts between delimiters, and titles.
#include "fuzz/target.h"
#include "support/reference_links.h"
#include "web/tag_text.h"

using namespace quenlar;

QUENLAR_FUZZ_TARGET(attributes) {
  fuzz::Feed feed(bytes);
  const std::string tag(feed.Text());
  for (const char* name : {"href=", "src="}) {
    const std::string value = GetAttributeValue(tag, name);
    FUZZ_CHECK(value == ReferenceAttribute(tag, name));
    FUZZ_CHECK(value.find(' ') == value.npos);
  }
  const std::string text(feed.Rest());
  const std::string cleaned = CleanText(text);
  FUZZ_CHECK(cleaned == ReferenceClean(text));
  FUZZ_CHECK(cleaned.size() <= text.size());
  FUZZ_CHECK(cleaned.empty() || (cleaned.front() != ' ' && cleaned.back() != ' '));
  const std::string title = GetPageTitle(bytes);
  FUZZ_CHECK(title.find_first_of("\r\n\t") == title.npos);
  for (const SearchFrom from : {SearchFrom::kStart, SearchFrom::kEnd}) {
    const std::string_view between = TextBetween(bytes, "<r>", "</r>", from);
    FUZZ_CHECK(between.size() <= bytes.size());
  }
}
