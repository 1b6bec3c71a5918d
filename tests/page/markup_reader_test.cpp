// Tags, comments and raw texts, by the rules of the HTML Standard's tokenizer.
#include "page/markup_reader.h"

#include <string>

#include <gtest/gtest.h>

namespace quenlar {
namespace {

// What is read, in short: text as it stands, <tag a=value>, </tag>, {comment}, [raw text or CDATA].
std::string Read(std::string_view page) {
  MarkupReader reader(page);
  std::string out;
  for (Markup markup;;) {
    reader.Next(markup);
    out += page.substr(markup.text_begin, markup.begin - markup.text_begin);
    const std::string inside(page.substr(markup.inside, markup.inside_end - markup.inside));
    switch (markup.kind) {
      case Markup::Kind::kEnd:
        return out;
      case Markup::Kind::kComment:
        out += "{" + inside + "}";
        break;
      case Markup::Kind::kDeclaration:
        out += "!";
        break;
      case Markup::Kind::kCdata:
      case Markup::Kind::kRawText:
        out += "[" + inside + "]";
        break;
      case Markup::Kind::kEndTag:
        out += "</" + std::string(TagText(markup.name)) + ">";
        break;
      case Markup::Kind::kStartTag: {
        out += "<" + std::string(TagText(markup.name));
        AttributeReader attributes(page, markup.attributes);
        for (TagAttribute attribute; attributes.Next(attribute);) {
          out += " " + std::string(attribute.name) + "=" + std::string(attribute.value);
        }
        out += markup.self_closing ? "/>" : ">";
      }
    }
  }
}

struct Case {
  const char *page, *read;
};

void Check(std::initializer_list<Case> cases) {
  for (const Case& c : cases) EXPECT_EQ(Read(c.page), c.read) << c.page;
}

TEST(Markup, TagsBeginWithALetter) {
  Check({{"a<b>c</b>d", "a<b>c</b>d"},
         {"1 < 2 <3 <", "1 < 2 <3 <"},
         {"<>", "<>"},
         {"</>x", "{}x"},
         {"</ a>x", "{ a}x"},
         {"<?php a ?>x", "{?php a ?}x"},
         {"a</", "a</"},
         {"<A><SpAn></SPAN>", "<a><span></span>"},
         {"<abc>", "<>"},
         {"<p/ ><p/>", "<p><p/>"}});
}

TEST(Markup, AttributesAreQuotedOrBare) {
  Check({{"<a href=\"x>y\" title='>'>", "<a href=x>y title=>>"},
         {"<a href=x/y>", "<a href=x/y>"},
         {"<a  href = x  disabled>", "<a href=x disabled=>"},
         {"<a href='x'title=y>", "<a href=x title=y>"},
         {"<a/href=x/>", "<a href=x/>"},
         {"<a =x \"y\">", "<a =x= \"y\"=>"},
         {"<a b=c\"d>e\">", "<a b=c\"d>e\">"},
         {"<a b=>", "<a b=>"},
         {"<a b=''c>", "<a b= c=>"},
         {"<a\nb\t=\f'c'\r>", "<a b=c>"},
         {"<a=b>", "<>"}});
}

TEST(Markup, ATagThatThePageBreaksOffInIsNone) {
  Check({{"a<b", "a"}, {"a<b c='>", "a"}, {"a<b c", "a"}, {"a</b", "a"}, {"a<b c=", "a"}, {"a<b c=d ", "a"}});
}

TEST(Markup, CommentsHaveOddEnds) {
  Check({{"<!--a-->b", "{a}b"},
         {"<!-->b", "{}b"},
         {"<!--->b", "{}b"},
         {"<!---->b", "{}b"},
         {"<!--a--!>b", "{a}b"},
         {"<!--a-- >b-->c", "{a-- >b}c"},
         {"<!-- > -> --->c", "{ > -> -}c"},
         {"<!--a<!--b-->c-->", "{a<!--b}c-->"},
         {"<!--a", "{a}"},
         {"<!--a--", "{a}"},
         {"<!a>b", "{a}b"},
         {"<!-a-->b", "{-a--}b"},
         {"<!doctype html>b", "!b"},
         {"<![CDATA[a]]>b", "{[CDATA[a]]}b"}});
}

TEST(Markup, SomeElementsHoldTextAlone) {
  Check({{"<title><b>a</title>c", "<title>[<b>a]</title>c"},
         {"<textarea><!-- </textarea> -->", "<textarea>[<!-- ]</textarea> -->"},
         {"<style></styles></style >x", "<style>[</styles>]</style>x"},
         {"<XMP><a></xmp/>x", "<xmp>[<a>]</xmp>x"},
         {"<iframe><p></iframe>", "<iframe>[<p>]</iframe>"},
         {"<noembed><p></noembed>", "<noembed>[<p>]</noembed>"},
         {"<noframes><p></noframes>", "<noframes>[<p>]</noframes>"},
         {"<noscript><p></noscript>", "<><p></>"},
         {"<plaintext><p></plaintext>", "<plaintext>[<p></plaintext>]"},
         {"<title>a", "<title>[a]"},
         {"<title/>a</title>", "<title/>[a]</title>"}});
}

TEST(Markup, ScriptsMayHoldScriptsInComments) {
  Check({{"<script>a<b</script>c", "<script>[a<b]</script>c"},
         {"<script>'</scripty>'</script>c", "<script>['</scripty>']</script>c"},
         {"<script><!-- </script>c", "<script>[<!-- ]</script>c"},
         {"<script><!-- <script> </script> --></script>c", "<script>[<!-- <script> </script> -->]</script>c"},
         {"<script><!-- <script> --></script>c", "<script>[<!-- <script> -->]</script>c"},
         {"<script><!-- <script> </script> </script>c", "<script>[<!-- <script> </script> ]</script>c"},
         {"<script><!--><script></script>c", "<script>[<!--><script>]</script>c"},
         {"<script><!-- <scripts> </script>c", "<script>[<!-- <scripts> ]</script>c"},
         {"<script><!-- <script>", "<script>[<!-- <script>]"}});
}

TEST(Markup, CdataIsTextInForeignContent) {
  Check({{"<svg><![CDATA[a<b>]]>c", "<svg>[a<b>]c"},
         {"<math><![CDATA[a]]]]>c", "<math>[a]]]c"},
         {"<svg><![CDATA[a", "<svg>[a]"},
         {"<svg></svg><![CDATA[a]]>", "<svg></svg>{[CDATA[a]]}"},
         {"<svg/><![CDATA[a]]>", "<svg/>{[CDATA[a]]}"},
         {"<svg><title><![CDATA[a]]><b><![CDATA[a]]></b><![CDATA[a]]>", "<svg><title>[a]<b>{[CDATA[a]]}</b>[a]"}});
}

TEST(Markup, ForeignContentHasNoRawText) {
  Check({{"<svg><style><a></style></svg>", "<svg><style><a></style></svg>"},
         {"<svg><style></svg><style><a></style>", "<svg><style></svg><style>[<a>]</style>"},
         {"<svg><svg></svg><style><a>", "<svg><svg></svg><style><a>"},
         {"<svg><p><style><a></style>", "<svg><p><style>[<a>]</style>"},
         {"<svg></p><style><a></style>", "<svg></p><style>[<a>]</style>"},
         {"<svg><font><style><a>", "<svg><font><style><a>"},
         {"<svg><font size=1><style><a>", "<svg><font size=1><style>[<a>]"},
         {"<svg><foreignObject><style><a></style></foreignObject><style><a>",
          "<svg><foreignobject><style>[<a>]</style></foreignobject><style><a>"},
         {"<svg><title><style><a></style></title><style><a>", "<svg><title><style>[<a>]</style></title><style><a>"},
         {"<math><mi><style><a></style></mi><style><a>", "<math><mi><style>[<a>]</style></mi><style><a>"},
         {"<math><annotation-xml encoding='Text/HTML'><style><a></style>",
          "<math><annotation-xml encoding=Text/HTML><style>[<a>]</style>"},
         {"<math><annotation-xml><style><a>", "<math><annotation-xml><style><a>"}});
}

TEST(Markup, EndTagsCloseTheElementsOfForeignContentInThem) {
  Check(
      {{"<svg><g><svg></g></svg><style><a></style>", "<svg><><svg></></svg><style>[<a>]</style>"},
       {"<svg><G><x></g><style><a>", "<svg><><></><style><a>"},
       {"<svg><g></x></svg><style><a></style>", "<svg><></></svg><style>[<a>]</style>"},
       {"<svg><title><title><a></title></title><style><a>", "<svg><title><title>[<a>]</title></title><style><a>"},
       {"<svg><title><title><a></title></title></svg><style><a></style>",
        "<svg><title><title>[<a>]</title></title></svg><style>[<a>]</style>"},
       {"<math><mi><mi></mi><style><a></style></mi><style><a>",
        "<math><mi><mi></mi><style>[<a>]</style></mi><style><a>"},
       {"<math><annotation-xml><svg><desc><style><a></style>", "<math><annotation-xml><svg><desc><style>[<a>]</style>"},
       {"<svg><desc><svg><g><p><style><a></style></p></desc><style><a>",
        "<svg><desc><svg><><p><style>[<a>]</style></p></desc><style><a>"}});
}

TEST(Markup, TagsThatABodyPassesOverDoNotKeepForeignContentOpen) {
  Check(
      {{"<svg><desc><head><tr></desc></svg><style><a></style>",
        "<svg><desc><head><tr></desc></svg><style>[<a>]</style>"},
       {"<svg><desc><html><body><td></desc><style><a>", "<svg><desc><html><body><td></desc><style><a>"},
       {"<svg><desc><table><tr><td></table></desc><style><a>", "<svg><desc><table><tr><td></table></desc><style><a>"}});
}

TEST(Markup, EveryPageCanBreakOffAnywhere) {
  const std::string page =
      "<!doctype html><!--a--><title>b</title><script><!--<script></script>--></script><a href='x' b=c>d</a>"
      "<svg><![CDATA[e]]><foreignobject><p f=\"g\"/></foreignobject></svg><plaintext>h";
  for (std::size_t size = 0; size <= page.size(); ++size) (void)Read(std::string(page, 0, size));
}

}  // namespace
}  // namespace quenlar
