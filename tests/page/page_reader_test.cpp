// Whole pages: titles, links, addresses with their places, words for robots.
#include "page/page_reader.h"

#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "support/fake_idna.h"
#include "support/fake_text_decoder.h"

namespace quenlar {
namespace {

struct Options {
  std::string content_type = {};
  std::vector<std::string> headers = {};
  bool links = true, decode = false, utf8 = true;
};

ReadResult Read(std::string_view body, const Options& options = {}) {
  static const FakeIdna idna;
  static const FakeTextDecoder decoder;
  const auto url = ParseUrl("https://www.firma.de/a/b.html", nullptr, idna);
  ReadRequest request;
  request.body = body;
  request.url = &*url;
  request.content_type = options.content_type;
  request.robots_headers = options.headers;
  request.links = options.links;
  request.decode_protected = options.decode;
  request.body_is_utf8 = options.utf8;
  return ReadPage(request, idna, decoder);
}

// "from url", with "!" in front where it is not followed and "-" where it never is.
std::vector<std::string> Links(std::string_view body, const Options& options = {}) {
  std::vector<std::string> links;
  for (const PageLink& link : Read(body, options).links) {
    const char* mark = link.follow == LinkFollow::kFollowed ? "" : link.follow == LinkFollow::kUnasked ? "!" : "-";
    links.push_back(mark + std::string(LinkSourceName(link.from)) + " " + link.url);
  }
  return links;
}

// "place address"
std::vector<std::string> Addresses(std::string_view body, const Options& options = {}) {
  const ReadResult result = Read(body, options);
  std::vector<std::string> addresses;
  for (const PageAddress& found : result.addresses) {
    addresses.push_back(std::string(PlaceName(found.place)) + " " + std::string(found.address));
  }
  return addresses;
}

using List = std::vector<std::string>;

TEST(PageReader, TheTitleIsThatOfTheFirstTitleElement) {
  EXPECT_EQ(Read("<title> A &amp;\n\t B </title><title>C</title>").title, "A & B");
  EXPECT_EQ(Read("<p>text").title, std::nullopt);
  EXPECT_EQ(Read("<title></title>").title, "");
  EXPECT_EQ(Read("<svg><title>A</title></svg><title>B</title>").title, "B");
  EXPECT_EQ(Read("<title><b>A</b></title>").title, "<b>A</b>");
  EXPECT_EQ(Read("<title>A").title, "A");
  EXPECT_EQ(Read("<!--<title>A</title>--><script>'<title>B</title>'</script>").title, std::nullopt);
}

TEST(PageReader, ATitleHas500CharactersAtMost) {
  std::string longest;
  for (int i = 0; i < 500; ++i) longest += "ü";
  EXPECT_EQ(Read("<title>" + longest + longest + "</title>").title, longest);
  EXPECT_EQ(Read("<title>" + longest + "</title>").title, longest);
}

TEST(PageReader, MalformedCharactersOfATitleAreReplaced) {
  EXPECT_EQ(Read(std::string_view("<title>a\xFF\0</title>", 18)).title, "a\uFFFD\uFFFD");
}

TEST(PageReader, LinksAreThoseOfAnchorsFramesMetaAndLink) {
  EXPECT_EQ(
      Links("<a href=1><area href=2><frame src=3><iframe src=4></iframe><link rel=canonical href=5>"
            "<link rel='x NEXT' href=6><link rel=alternate href=7><meta http-equiv=Refresh content='0; url=8'>"),
      (List{"a https://www.firma.de/a/1", "area https://www.firma.de/a/2", "frame https://www.firma.de/a/3",
            "iframe https://www.firma.de/a/4", "canonical https://www.firma.de/a/5", "next https://www.firma.de/a/6",
            "alternate https://www.firma.de/a/7", "refresh https://www.firma.de/a/8"}));
}

TEST(PageReader, OtherElementsAndAttributesHaveNoLinks) {
  EXPECT_EQ(Links("<a name=1><img src=2><link rel=stylesheet href=3><link href=4><a title=5>"
                  "<link rel=alternate type=application/rss+xml href=6><link rel='alternate stylesheet' href=7>"
                  "<p href=8><!--<a href=9>--><script>'<a href=10>'</script><textarea><a href=11></textarea>"
                  "<a x='<a href=12>'></a href=13><meta content='0;url=14'><iframe><a href=15></iframe>"),
            List{});
}

TEST(PageReader, WhatStandsForBrowsersWithoutScriptsIsMarkup) {
  const std::string page = "<noscript><a href=1>a@firma.de</a> <a href=mailto:b@firma.de>b</a></noscript>";
  EXPECT_EQ(Links(page), List{"a https://www.firma.de/a/1"});
  EXPECT_EQ(Addresses(page), (List{"text a@firma.de", "mailto b@firma.de"}));
}

TEST(PageReader, AlternatesAreHtml) {
  EXPECT_EQ(Links("<link rel=alternate type='text/html; charset=utf-8' hreflang=en href=1>"
                  "<link rel=alternate type=TEXT/HTML href=2><link rel=alternate type=application/pdf href=3>"),
            (List{"alternate https://www.firma.de/a/1", "alternate https://www.firma.de/a/2"}));
}

TEST(PageReader, EachUrlIsOneLink) {
  EXPECT_EQ(Links("<a href=x rel=nofollow><area href=./x#y><a href='/a/x'><a href=http://www.firma.de/a/x>"),
            (List{"a https://www.firma.de/a/x", "a http://www.firma.de/a/x"}));
}

// The text of each link.
std::vector<std::string> LinkTexts(std::string_view body) {
  std::vector<std::string> texts;
  for (const PageLink& link : Read(body).links) texts.push_back(link.text);
  return texts;
}

TEST(PageReader, ALinkHasTheTextThatAPersonReads) {
  EXPECT_EQ(LinkTexts("<a href=/1>Write <b>to</b>\n us</a> <a href=/2>&Uuml;ber&nbsp;uns</a>"),
            (List{"Write to us", "Über\u00A0uns"}));
  EXPECT_EQ(LinkTexts("<a href=/1>One<a href=/2>Two"), (List{"One", "Two"}));
  EXPECT_EQ(LinkTexts("<a href=/1><!-- no -->One</a>Two<link rel=next href=/2>"), (List{"One", ""}));
}

TEST(PageReader, ALinkHasTheTextsOfAllItsAnchors) {
  EXPECT_EQ(LinkTexts("<a href=/1><img src=x></a><a href=/1>One</a><a href=/1>Two</a>"), (List{"One\nTwo"}));
  EXPECT_EQ(LinkTexts("<a href=/1>One</a><a href=/1>One</a><a href=./../1><i>One</i></a><a href=/2>Two</a>"),
            (List{"One", "Two"}));
  EXPECT_EQ(LinkTexts("<a href=/1>1</a><a href=/1>2</a><a href=/1>3</a><a href=/1>4</a><a href=/1>5</a>"),
            (List{"1\n2\n3\n4"}));
  EXPECT_EQ(LinkTexts("<a href=/1> </a><a href='/1#top'>One</a><a href=/1?></a>"), (List{"One", ""}));
  EXPECT_EQ(LinkTexts("<a href=''>No target</a><a href=/1>One</a>"), (List{"One"}));
}

TEST(PageReader, ALongContentIsReadAtItsBeginning) {
  const List texts = LinkTexts("<a href=/1>" + std::string(600, 'x') + "</a>");
  ASSERT_EQ(texts.size(), 1u);
  EXPECT_EQ(texts[0], std::string(500, 'x'));
}

TEST(PageReader, EmptyForeignAndLongTargetsAreNoLinks) {
  EXPECT_EQ(
      Links("<a href=''><a href=' '><a href='#x'><a href='&#35;x'><a href=mailto:x@y><a href=javascript:x><a href='//'>"
            "<a href=ftp://x/><a href='" +
            std::string(2083, 'x') + "'>"),
      List{});
  EXPECT_EQ(Links("<a href='" + std::string(2083 - 23, 'x') + "'>").size(), 1u);
}

TEST(PageReader, TargetsAreDecoded) {
  EXPECT_EQ(Links("<a href='?a=1&amp;b=2&copy=3'><a href=' \n x\ty '><a href=\"&#x68;ttp&colon;//h/\">"),
            (List{"a https://www.firma.de/a/b.html?a=1&b=2&copy=3", "a https://www.firma.de/a/xy", "a http://h/"}));
}

TEST(PageReader, TheFirstAttributeOfANameCounts) {
  EXPECT_EQ(Links("<a href=1 HREF=2><a rel=x rel=nofollow href=3>"),
            (List{"a https://www.firma.de/a/1", "a https://www.firma.de/a/3"}));
}

TEST(PageReader, EndingsThatNameNoPageAreLeftOut) {
  EXPECT_EQ(Links("<a href=a.pdf><a href=A.WebP?x=y><a href=x.tar.gz><a href=a.html?b.pdf><a href=pdf><a href=a.pdfx>"
                  "<a href=a.pdf/><a href=.woff2><frame src=x.svg><link rel=canonical href=c.pdf>"
                  "<meta http-equiv=refresh content='1;d.pdf'><a href=c.pdf>"),
            (List{"a https://www.firma.de/a/a.html?b.pdf", "a https://www.firma.de/a/pdf",
                  "a https://www.firma.de/a/a.pdfx", "a https://www.firma.de/a/a.pdf/",
                  "canonical https://www.firma.de/a/c.pdf", "refresh https://www.firma.de/a/d.pdf"}));
}

TEST(PageReader, SomeLinksAreNotFollowed) {
  EXPECT_EQ(Links("<a href=1 rel='noopener NoFollow'><a href=2 rel=ugc><a href=3 rel=sponsored><a href=4 download>"
                  "<a href=5 rel=nofollowed><a href=4>"),
            (List{"!a https://www.firma.de/a/1", "!a https://www.firma.de/a/2", "!a https://www.firma.de/a/3",
                  "a https://www.firma.de/a/4", "a https://www.firma.de/a/5"}));
  EXPECT_EQ(Links("<a href=1 download><a href=2><meta name=robots content=nofollow>"),
            (List{"-a https://www.firma.de/a/1", "!a https://www.firma.de/a/2"}));
}

TEST(PageReader, TheFirstBaseHoldsForTheWholePage) {
  const std::string page = "<a href=1><base target=x><base href='/q/r?s#t'><a href=2><base href=/no/>";
  EXPECT_EQ(Links(page), (List{"a https://www.firma.de/q/1", "a https://www.firma.de/q/2"}));
  EXPECT_EQ(Read(page).base, "https://www.firma.de/q/r?s");
  EXPECT_EQ(Read("<p>").base, "https://www.firma.de/a/b.html");
  EXPECT_EQ(Read("<base href='javascript:x'><base href=/no/>").base, "https://www.firma.de/a/b.html");
}

TEST(PageReader, RefreshTargetsAreReadAsBrowsersDo) {
  for (const char* content :
       {"0;url=x", "0; URL = 'x'", "0, url=&quot;x&quot;y", "5 x", "0;x", ".5;url=x", " 1 ; url=x "}) {
    EXPECT_EQ(Links("<meta http-equiv=refresh content=\"" + std::string(content) + "\">"),
              List{"refresh https://www.firma.de/a/x"})
        << content;
  }
  for (const char* content : {"", "5", "x", "url=x", "0;", "0;url=", "0x"}) {
    EXPECT_EQ(Links("<meta http-equiv=refresh content='" + std::string(content) + "'>"), List{}) << content;
  }
}

TEST(PageReader, WordsForRobotsComeFromMetaAndHeader) {
  EXPECT_EQ(Read("<meta name=robots content='NoIndex, , follow'><meta name=QUENLAR content=none>"
                 "<meta name=otherbot content=nofollow>")
                .robots.words(),
            (List{"noindex", "follow", "none"}));
  const ReadResult result = Read("<p>", {.headers = {"noarchive", "other: nofollow, noindex", "Quenlar: NOFOLLOW",
                                                     "unavailable_after: 1 Jan 2030"}});
  EXPECT_EQ(result.robots.words(), (List{"noarchive", "nofollow", "unavailable_after: 1 jan 2030"}));
  EXPECT_TRUE(result.robots.nofollow());
  EXPECT_FALSE(result.robots.noindex());
}

TEST(PageReader, AddressesHaveTheirPlaces) {
  EXPECT_EQ(
      Addresses("<title>a@firma.de</title><!-- b@firma.de --><a href='mailto:c@firma.de'>d@firma.de</a>"
                "<p title=e@firma.de><script>'f\\u0040firma.de'</script><a href='/x?y=g@firma.de'>"
                "<textarea>h&#64;firma.de</textarea><svg><![CDATA[i@firma.de]]></svg><style>k@firma.de</style>"
                "<p j@firma.de></p l@firma.de><?m@firma.de?>"),
      (List{"text a@firma.de", "comment b@firma.de", "mailto c@firma.de", "text d@firma.de", "attribute e@firma.de",
            "script f@firma.de", "attribute g@firma.de", "text h@firma.de", "text i@firma.de", "comment m@firma.de"}));
}

TEST(PageReader, AddressesComeInTheOrderOfThePage) {
  EXPECT_EQ(Addresses("a@firma.de <a href=mailto:b@firma.de>c@firma.de</a> <!-- d@firma.de --> e@firma.de"),
            (List{"text a@firma.de", "mailto b@firma.de", "text c@firma.de", "comment d@firma.de", "text e@firma.de"}));
}

TEST(PageReader, TextComesBeforeWhatStandsWithinItsRun) {
  EXPECT_EQ(
      Addresses("<a href=1>a@firma.de</a><a href=mailto:b@firma.de>c@firma.de</a>d<i title=e@firma.de>@firma.de</i>"
                "<!-- f@firma.de --> <b>g@firma.de</b>"),
      (List{"text a@firma.de", "mailto b@firma.de", "text c@firma.de", "text d@firma.de", "attribute e@firma.de",
            "comment f@firma.de", "text g@firma.de"}));
  // The local part is that of the first place on the page, wherever it is found first.
  EXPECT_EQ(Addresses("<b>Info@firma.de</b><a href=mailto:info@firma.de>x</a>"),
            (List{"text Info@firma.de", "mailto Info@firma.de"}));
  EXPECT_EQ(Addresses("<b>A [at] firma.de</b><i data-cfemail=5a3b1a3c3328373b743e3f></i>", {.decode = true}),
            List{"protected A@firma.de"});
}

TEST(PageReader, AWordIsWhatABrowserShowsAsOne) {
  EXPECT_EQ(Addresses("name<span>&#64;</span>fir<!-- -->ma.<b>de</b>"), List{"text name@firma.de"});
  EXPECT_EQ(Addresses("name<br>@firma.de"), List{});
  EXPECT_EQ(Addresses("<p>a@firma</p>.de"), List{});
  EXPECT_EQ(Addresses(std::string_view("na\0me@firma.de", 14)), List{"text name@firma.de"});
}

TEST(PageReader, WhatIsNotShownIsATrap) {
  EXPECT_EQ(Addresses("<p hidden>a@firma.de <a href=mailto:b@firma.de title=c@firma.de>x</a></p>d@firma.de"),
            List{"text d@firma.de"});
  EXPECT_EQ(Addresses("<div style='display:none'>a@firma.de</div>"), List{});
  EXPECT_EQ(Read("<div style='display:none'>a@firma.de</div>").protected_addresses, 0u);
}

TEST(PageReader, ProtectedAddressesAreCountedAndListedWhenAsked) {
  const std::string page =
      "a [at] firma [dot] de <p>b<i style=display:none>x</i>@firma.de<p><a data-cfemail=5a391a3c3328373b743e3f>x</a>"
      "<p>d &#40;at&#41; firma.de<p><span style='unicode-bidi:bidi-override; direction:rtl'>ed.amrif@e</span>";
  EXPECT_EQ(Read(page).protected_addresses, 5u);
  EXPECT_EQ(Addresses(page), List{});
  EXPECT_EQ(Addresses(page, {.decode = true}),
            (List{"protected a@firma.de", "protected b@firma.de", "protected c@firma.de", "protected d@firma.de",
                  "protected e@firma.de"}));
}

TEST(PageReader, PlainTextHasNoMarkup) {
  const ReadResult result = Read("<title>x</title> <a href=y>info@firma.de</a> a&#64;firma.de",
                                 {.content_type = "Text/Plain; charset=utf-8"});
  EXPECT_EQ(result.title, std::nullopt);
  EXPECT_TRUE(result.links.empty());
  ASSERT_EQ(result.addresses.size(), 1u);
  EXPECT_EQ(result.addresses[0].address, "info@firma.de");
}

TEST(PageReader, BytesAreReadInTheCharsetOfThePage) {
  EXPECT_EQ(Read("<title>gr\xFC\xDF</title>", {.utf8 = false}).title, "grüß");
  EXPECT_EQ(Read("<title>gr\xC3\xBC</title>", {.content_type = "text/html; charset=utf-8", .utf8 = false}).title,
            "grü");
  EXPECT_EQ(Links("<a href='\xFC'>", {.utf8 = false}), List{"a https://www.firma.de/a/%C3%BC"});
  EXPECT_EQ(Read(std::string_view("\xFF\xFE<\0t\0i\0t\0l\0e\0>\0a\0", 18), {.utf8 = false}).title, "a");
}

// Behind the last sign of an address a reader passes over all tags that have no part in links.
TEST(PageReader, LinksAndTitleAreTheSameWhereverTheLastSignStands) {
  const List pieces = {"<a href=/1>",
                       "<a href='/2' title=\">\">",
                       "</a>",
                       "<A\nHREF=/3/>",
                       "<p class=\"a\">",
                       "</p >",
                       "<title>T",
                       "</title>",
                       "<script>",
                       "</script>",
                       "<!-- <a href=/4>",
                       "-->",
                       "<style>",
                       "</style>",
                       "<svg>",
                       "<title/>",
                       "</svg>",
                       "<math><mi>",
                       "</math>",
                       "<![CDATA[",
                       "]]>",
                       "<base href=/b/>",
                       "<meta name=robots content=nofollow>",
                       "<link rel=next href=/5>",
                       "<frame src=/6>",
                       "<iframe src=/7>",
                       "</iframe>",
                       "<spam =\"",
                       "\">",
                       "<textarea>",
                       "</textarea>",
                       "<x a=b=c=\"d>",
                       "text",
                       "<",
                       "</",
                       "<!x",
                       "<?x",
                       ">",
                       "'",
                       "</p a=\">\">",
                       "<area href=/8>",
                       "<noframes>",
                       "</noframes>",
                       "<abbr>",
                       "<tt>",
                       "<img/>"};
  std::mt19937 random(11);
  for (int round = 0; round < 20000; ++round) {
    std::string page;
    for (unsigned i = random() % 12; i > 0; --i) page += pieces[random() % pieces.size()];
    page += "\">'>--></script></style></title></textarea></iframe></noframes></a><p>";
    const std::string with_sign = page + "<p>" + std::string(64, ' ') + "x@firma.de";
    EXPECT_EQ(Links(page), Links(with_sign)) << page;
    EXPECT_EQ(LinkTexts(page), LinkTexts(with_sign)) << page;
    const ReadResult plain = Read(page), signed_page = Read(with_sign);
    EXPECT_EQ(plain.title, signed_page.title) << page;
    EXPECT_EQ(plain.robots.nofollow(), signed_page.robots.nofollow()) << page;
    EXPECT_EQ(plain.base, signed_page.base) << page;
    ASSERT_FALSE(HasFailure());
  }
}

TEST(PageReader, WithoutLinksAPageWithoutASignIsNotRead) {
  EXPECT_EQ(Read("<title>x</title><a href=y>", {.links = false}).title, std::nullopt);
  const ReadResult result = Read("<title>x</title>a@firma.de<a href=y>", {.links = false});
  EXPECT_EQ(result.title, "x");
  EXPECT_EQ(result.addresses.size(), 1u);
  EXPECT_TRUE(result.links.empty());
}

}  // namespace
}  // namespace quenlar
