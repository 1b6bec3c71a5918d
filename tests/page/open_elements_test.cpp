// Which text a browser does not show, or shows from its last character to the first.
#include "page/open_elements.h"

#include <string>

#include <gtest/gtest.h>

#include "page/markup_reader.h"

namespace quenlar {
namespace {

// The letters of a page that are shown. The attribute `x` hides an element, `y` turns it round: those letters are
// capital.
std::string Shown(std::string_view page) {
  MarkupReader reader(page);
  OpenElements elements;
  std::string shown;
  for (Markup markup;;) {
    reader.Next(markup);
    for (const char c : page.substr(markup.text_begin, markup.begin - markup.text_begin)) {
      if (!elements.hidden()) shown += elements.reversed() ? static_cast<char>(c - 'a' + 'A') : c;
    }
    if (markup.kind == Markup::Kind::kEnd) return shown;
    const bool start = markup.kind == Markup::Kind::kStartTag;
    const std::size_t name = markup.begin + (start ? 1 : 2);
    const std::string_view text = page.substr(name, markup.attributes - name);
    const std::string_view attributes = page.substr(markup.attributes, markup.end - markup.attributes);
    const ElementLook look{attributes.find('x') != attributes.npos, attributes.find('y') != attributes.npos};
    if (start)
      elements.Start(markup.name, text, look, false);
    else if (markup.kind == Markup::Kind::kEndTag)
      elements.End(markup.name, text);
  }
}

struct Case {
  const char *page, *shown;
};

TEST(OpenElements, ContentOfAHiddenElementIsHidden) {
  for (const Case& c : {Case{"a<p x>b</p>c", "ac"},
                        {"a<div x>b<div>c</div>d</div>e", "ae"},
                        {"<b x>a<i>b</i>c</b>d", "d"},
                        {"<custom x>a<other>b</other></custom>c", "c"},
                        {"<CUSTOM x>a</custom>b", "b"},
                        {"<br x>a<img x>b", "ab"},
                        {"<p x>a", ""},
                        {"<p y>a<b x>b</b>c</p>d", "ACd"}}) {
    EXPECT_EQ(Shown(c.page), c.shown) << c.page;
  }
}

TEST(OpenElements, ElementsEndWithoutAnEndTagWhereHtmlSaysSo) {
  for (const Case& c : {Case{"<p x>a<p>b", "b"},
                        {"<p x>a<b>b<div>c", "c"},
                        {"<ul><li x>a<li>b</ul>c", "bc"},
                        {"<ul><li x>a<ul><li>b</ul><li>c</ul>", "c"},
                        {"<dl><dt x>a<dd>b</dl>", "b"},
                        {"<table><tr><td x>a<td>b<tr x><td>c<tr><td>d</table>e", "bde"},
                        {"<select><option x>a<option>b</select>", "b"},
                        {"<div><p x>a</div>b", "b"},
                        {"<div><span x>a</div>b", "b"}}) {
    EXPECT_EQ(Shown(c.page), c.shown) << c.page;
  }
}

TEST(OpenElements, EndTagsOfNothingAreIgnored) {
  for (const Case& c : {Case{"<p x>a</b>b</p>c", "c"},
                        {"</p>a<b x>b</i></b>c", "ac"},
                        {"<div x>a</section>b</div>c", "c"},
                        {"<b><div x></b>a</div>b", "b"},
                        {"<b x><div></b>a</div>b", "ab"}}) {
    EXPECT_EQ(Shown(c.page), c.shown) << c.page;
  }
}

TEST(OpenElements, StylesHideAndTurnRound) {
  EXPECT_TRUE(LookOfStyle("display:none").hidden);
  EXPECT_TRUE(LookOfStyle(" color: red; DISPLAY : None !important; ").hidden);
  EXPECT_TRUE(LookOfStyle("visibility:hidden").hidden);
  EXPECT_FALSE(LookOfStyle("display:none; display:block").hidden);
  EXPECT_FALSE(LookOfStyle("visibility:visible; overflow:hidden; display:inline").hidden);
  EXPECT_FALSE(LookOfStyle("").hidden);
  EXPECT_TRUE(LookOfStyle("unicode-bidi:bidi-override; direction:rtl").reversed);
  EXPECT_FALSE(LookOfStyle("unicode-bidi:bidi-override").reversed);
  EXPECT_FALSE(LookOfStyle("direction:rtl").reversed);
  EXPECT_FALSE(LookOfStyle("unicode-bidi:bidi-override; direction:ltr").reversed);
}

}  // namespace
}  // namespace quenlar
