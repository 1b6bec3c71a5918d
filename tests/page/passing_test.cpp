// Reading pages on which long stretches without a sign of an address are passed over.
#include <string>

#include <gtest/gtest.h>

#include "page/page_reader.h"
#include "support/fake_idna.h"
#include "support/fake_text_decoder.h"

namespace quenlar {
namespace {

std::string Times(std::size_t count, const std::string& text) {
  std::string all;
  for (; count > 0; --count) all += text;
  return all;
}

const std::string kFar = Times(40, "<p>word <i>word</i> <a href=/x>word</a></p>");
const std::string kWords = Times(30, "word ");
const std::string kInlineFar = Times(60, "<b></b>");

std::string Found(const std::string& body, bool links) {
  const FakeIdna idna;
  const FakeTextDecoder decoder;
  ReadRequest request;
  request.body = body;
  request.content_type = "text/html; charset=utf-8";
  request.links = links;
  std::string found;
  const ReadResult page = ReadPage(request, idna, decoder);
  for (const PageAddress& address : page.addresses) {
    found += std::string(address.address) + " " + std::string(PlaceName(address.place)) + " ";
  }
  return found + page.title.value_or("-") + (page.robots.noindex() ? " noindex" : "");
}

TEST(Passing, FindsWhatStandsFarBehindTheBeginning) {
  const struct {
    std::string page, found;
  } cases[] = {
      {kFar + "a@firma.de", "a@firma.de text -"},
      {kFar + "<p>a<b>@</b>firma.de", "a@firma.de text -"},
      {kFar + "<p>a" + kInlineFar + "@firma.de", "a@firma.de text -"},
      {"a" + kInlineFar + "@firma.de", "a@firma.de text -"},
      {kFar + "a</p>@firma.de", "-"},
      {kFar + "a@firma.de" + kFar + "<p>b<i>@</i>firma.de", "a@firma.de text b@firma.de text -"},
      {"<title>t</title><meta name=robots content=noindex>" + kFar + "a@firma.de", "a@firma.de text t noindex"},
      {"<title>" + kWords + "a@firma.de</title>", "a@firma.de text " + kWords + "a@firma.de"},
      {kFar + "<script>\"a@firma.de\"</script>" + kFar + "b@firma.de", "a@firma.de script b@firma.de text -"},
      {kFar + "<!--" + kFar + "a@firma.de-->" + kFar + "b@firma.de", "a@firma.de comment b@firma.de text -"},
      {kFar + "<img alt='" + kFar + "a@firma.de'>b@firma.de", "a@firma.de attribute b@firma.de text -"},
      {kFar + "<style>a@firma.de</style>" + kFar + "b@firma.de", "b@firma.de text -"},
      {kFar + "<svg><title>" + kFar + "<b>a@firma.de</b></title></svg>" + kFar + "b@firma.de",
       "a@firma.de text b@firma.de text -"},
      {kFar + "<svg/><p>a" + kInlineFar + "@firma.de", "a@firma.de text -"},
      {"<div hidden>" + kFar + "a@firma.de</div>" + kFar + "b@firma.de", "b@firma.de text -"},
      {kFar + "<div><p style='display:none'>" + kFar + "</p></div>a@firma.de", "a@firma.de text -"},
      {"<div>" + kFar + "<b hidden>" + kFar + "a@firma.de</div>" + kFar + "b@firma.de", "b@firma.de text -"},
      {kFar + "<img hidden>a@firma.de" + kFar + "<b>b@firma.de", "a@firma.de text b@firma.de text -"},
  };
  for (const auto& each : cases) {
    EXPECT_EQ(Found(each.page, false), each.found) << each.page.substr(each.page.size() - 100);
    EXPECT_EQ(Found(each.page, true), each.found) << each.page.substr(each.page.size() - 100);
  }
}

TEST(Passing, ReadsNoTagTwiceForLinks) {
  const FakeIdna idna;
  const FakeTextDecoder decoder;
  ReadRequest request;
  const std::optional<Url> url = ParseUrl("http://www.firma.de/", nullptr, idna);
  request.url = &*url;
  request.content_type = "text/html; charset=utf-8";
  const std::string body =
      "<meta http-equiv=refresh content='1;url=/r'>" + kInlineFar + "<a href=/1>" + kInlineFar + "a@firma.de</a>";
  request.body = body;
  const ReadResult page = ReadPage(request, idna, decoder);
  ASSERT_EQ(page.links.size(), 2u);
  EXPECT_EQ(page.links[0].url, "http://www.firma.de/r");
  EXPECT_EQ(page.links[1].url, "http://www.firma.de/1");
  EXPECT_EQ(page.addresses.size(), 1u);
}

}  // namespace
}  // namespace quenlar
