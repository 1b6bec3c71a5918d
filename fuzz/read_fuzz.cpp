// Reading pages: markup covers the page without a gap, links and addresses are each there once, what is found is found
// again, and a page without a sign of an address has none.
#include <set>
#include <string>

#include "fuzz/target.h"
#include "page/markup_reader.h"
#include "page/page_reader.h"
#include "page/page_signs.h"
#include "page/references.h"
#include "support/fake_idna.h"
#include "support/fake_text_decoder.h"

using namespace quenlar;

namespace {

const FakeIdna kIdna;
const FakeTextDecoder kDecoder;

ReadResult Read(std::string_view page, std::string_view content_type, bool links) {
  static const auto url = ParseUrl("http://www.firma.de/a/b.html", nullptr, kIdna);
  ReadRequest request;
  request.body = page;
  request.url = &*url;
  request.content_type = content_type;
  request.links = links;
  request.decode_protected = true;
  return ReadPage(request, kIdna, kDecoder);
}

void CheckMarkup(std::string_view page) {
  MarkupReader reader(page);
  std::size_t at = 0;
  for (Markup markup;;) {
    reader.Next(markup);
    FUZZ_CHECK(markup.text_begin == at && markup.begin >= at && markup.end >= markup.begin);
    at = markup.end;
    if (markup.kind == Markup::Kind::kEnd) break;
    const bool tag = markup.kind == Markup::Kind::kStartTag || markup.kind == Markup::Kind::kEndTag;
    if (tag) FUZZ_CHECK(markup.attributes > markup.begin && markup.attributes < markup.end);
    if (!tag)
      FUZZ_CHECK(markup.inside >= markup.begin && markup.inside_end >= markup.inside && markup.inside_end <= at);
  }
  FUZZ_CHECK(at == page.size());
}

void CheckSigns(std::string_view page) {
  if (PageSigns(page).next() != std::string_view::npos) return;
  std::string decoded;
  AppendDecoded(page, ReferencePlace::kText, decoded);
  AddressFinder finder(kIdna, {});
  finder.Text({decoded, {}, false, false});
  finder.Script(page);
  finder.Mailto(decoded);
  FUZZ_CHECK(finder.Addresses().empty() && finder.ProtectedCount() == 0);
}

// The addresses, one a paragraph.
std::string Paragraphs(const ReadResult& result) {
  std::string page;
  for (const PageAddress& found : result.addresses) {
    page += "<p>";
    for (const char c : found.address) page += c == '&' ? std::string("&amp;") : std::string(1, c);
  }
  return page;
}

}  // namespace

// The first byte chooses the type of the page, the second one where it breaks off.
QUENLAR_FUZZ_TARGET(read) {
  fuzz::Feed feed(bytes);
  static constexpr const char* kTypes[] = {"", "text/html; charset=utf-8", "text/plain; charset=utf-8", "text/html"};
  const char* type = kTypes[feed.Byte() % 4];
  const std::size_t cut = feed.Byte();
  const std::string_view page = feed.Rest().substr(0, 65536);

  CheckMarkup(page);
  CheckSigns(page);
  (void)Read(page.substr(0, page.size() * cut / 256), type, true);
  const ReadResult result = Read(page, type, true);
  std::set<std::string> urls;
  for (const PageLink& link : result.links) {
    FUZZ_CHECK(urls.insert(link.url).second);
    const auto again = ParseUrl(link.url, nullptr, kIdna);
    FUZZ_CHECK(again && again->href() == link.url);
  }
  std::set<std::pair<std::string, AddressPlace>> addresses;
  std::set<std::string> known;
  for (const PageAddress& found : result.addresses) {
    FUZZ_CHECK(addresses.insert({Lower(found.address), found.place}).second);
    known.insert(Lower(found.address));
  }
  FUZZ_CHECK(Read(page, type, false).addresses.size() == result.addresses.size());
  const std::string paragraphs = Paragraphs(result);
  const ReadResult again = Read(paragraphs, "text/html; charset=utf-8", false);
  FUZZ_CHECK(again.addresses.size() == known.size());
  for (const PageAddress& found : again.addresses) FUZZ_CHECK(known.contains(Lower(found.address)));
}
