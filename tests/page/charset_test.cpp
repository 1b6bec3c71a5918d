// Labels of charsets, and how a page says which one is its own.
#include "page/charset.h"

#include <gtest/gtest.h>

namespace quenlar {
namespace {

// Says what it was asked for.
class NamingDecoder final : public TextDecoder {
 public:
  [[nodiscard]] std::string ToUtf8(Charset charset, std::string_view bytes) const override {
    return std::to_string(static_cast<int>(charset)) + ":" + std::string(bytes);
  }
};

std::string Utf8(std::string_view bytes, Charset charset) {
  std::string storage;
  return std::string(PageAsUtf8(bytes, charset, NamingDecoder(), storage));
}

TEST(Charsets, LabelsAreThoseOfTheStandard) {
  EXPECT_EQ(CharsetOfLabel("UTF-8"), Charset::kUtf8);
  EXPECT_EQ(CharsetOfLabel(" Latin1\n"), Charset::kWindows1252);
  EXPECT_EQ(CharsetOfLabel("iso-8859-1"), Charset::kWindows1252);
  EXPECT_EQ(CharsetOfLabel("us-ascii"), Charset::kWindows1252);
  EXPECT_EQ(CharsetOfLabel("iso-8859-9"), Charset::kWindows1254);
  EXPECT_EQ(CharsetOfLabel("gb2312"), Charset::kGb18030);
  EXPECT_EQ(CharsetOfLabel("ks_c_5601-1987"), Charset::kEucKr);
  EXPECT_EQ(CharsetOfLabel("x-sjis"), Charset::kShiftJis);
  EXPECT_EQ(CharsetOfLabel("866"), Charset::kIbm866);
  EXPECT_EQ(CharsetOfLabel("utf-16"), Charset::kUtf16Le);
  EXPECT_EQ(CharsetOfLabel("iso-2022-kr"), Charset::kReplacement);
}

TEST(Charsets, OtherWordsAreNotLabels) {
  for (const char* label : {"", " ", "utf", "tf-8", "utf-8 utf8", "utf-7", "cp437", "66", "iso-8859"}) {
    EXPECT_EQ(CharsetOfLabel(label), std::nullopt) << label;
  }
}

TEST(Charsets, AContentTypeIsTakenApart) {
  struct Case {
    const char *value, *type, *charset;
  };
  for (const Case& c : {Case{"text/html", "text/html", ""},
                        {"Text/HTML; Charset=UTF-8", "Text/HTML", "UTF-8"},
                        {"text/html;charset=\"utf-8\"", "text/html", "utf-8"},
                        {"text/html; a=\";charset=x\"; charset=y", "text/html", "y"},
                        {"text/html; charset=a; charset=b", "text/html", "a"},
                        {"; charset=a", "", "a"},
                        {"text/html; charset", "text/html", ""},
                        {"text/html; charset=\"a", "text/html", "a"}}) {
    EXPECT_EQ(ParseContentType(c.value).type, c.type) << c.value;
    EXPECT_EQ(ParseContentType(c.value).charset, c.charset) << c.value;
  }
}

TEST(Charsets, AByteOrderMarkComesBeforeTheContentTypeAndThatBeforeTheMeta) {
  const std::string meta = "<meta charset=koi8-r>";
  EXPECT_EQ(CharsetOfPage("\xEF\xBB\xBF" + meta, "text/html; charset=big5"), Charset::kUtf8);
  EXPECT_EQ(CharsetOfPage("\xFF\xFE<\0", "text/html; charset=big5"), Charset::kUtf16Le);
  EXPECT_EQ(CharsetOfPage("\xFE\xFF\0<", ""), Charset::kUtf16Be);
  EXPECT_EQ(CharsetOfPage(meta, "text/html; charset=big5"), Charset::kBig5);
  EXPECT_EQ(CharsetOfPage(meta, "text/html; charset=nonsense"), Charset::kKoi8R);
  EXPECT_EQ(CharsetOfPage(meta, "text/html"), Charset::kKoi8R);
  EXPECT_EQ(CharsetOfPage("<p>text</p>", ""), Charset::kWindows1252);
}

TEST(Charsets, AMetaIsFoundAsThePrescanFindsIt) {
  struct Case {
    const char* page;
    Charset charset;
  };
  for (const Case& c : {
           Case{"<META http-equiv=\"Content-Type\" content=\"text/html; charset=koi8-r\">", Charset::kKoi8R},
           {"<meta content='text/html;charset=\"koi8-r\"' http-equiv=content-type>", Charset::kKoi8R},
           {"<meta content=\"text/html; charset=koi8-r\">", Charset::kWindows1252},
           {"<meta charset='koi8-r'>", Charset::kKoi8R},
           {"<meta/charset=koi8-r/>", Charset::kWindows1252},
           {"<!-- <meta charset=big5> --><meta charset=koi8-r>", Charset::kKoi8R},
           {"<p title=\"<meta charset=big5>\"><meta charset=koi8-r>", Charset::kKoi8R},
           {"<?xml <meta charset=big5> ?><meta charset=koi8-r>", Charset::kKoi8R},
           {"<metadata charset=big5><meta charset=koi8-r>", Charset::kKoi8R},
           {"<meta charset=nonsense><meta charset=koi8-r>", Charset::kKoi8R},
           {"<meta charset=utf-16>", Charset::kUtf8},
           {"<meta charset=x-user-defined>", Charset::kWindows1252},
           {"<!-- <meta charset=koi8-r>", Charset::kWindows1252},
           {"<meta charset=koi8-r", Charset::kWindows1252},
       }) {
    EXPECT_EQ(CharsetOfPage(c.page, ""), c.charset) << c.page;
  }
}

TEST(Charsets, AMetaBehindTheFirst1024BytesIsTooLate) {
  const std::string meta = "<meta charset=koi8-r>";
  EXPECT_EQ(CharsetOfPage(std::string(1024 - meta.size(), ' ') + meta, ""), Charset::kKoi8R);
  EXPECT_EQ(CharsetOfPage(std::string(1025 - meta.size(), ' ') + meta, ""), Charset::kWindows1252);
}

TEST(Charsets, PagesBecomeUtf8) {
  EXPECT_EQ(Utf8("\xEF\xBB\xBFgr\xC3\xBC\xC3\x9F", Charset::kUtf8), "grüß");
  EXPECT_EQ(Utf8("\x80 gr\xFC\xDF", Charset::kWindows1252), "€ grüß");
  EXPECT_EQ(Utf8(std::string_view("\xFF\xFE@\0\x3D\xD8\0\xDE", 8), Charset::kUtf16Le), "@\U0001F600");
  EXPECT_EQ(Utf8(std::string_view("\0@\xD8\x3D\0a\0", 7), Charset::kUtf16Be), "@\uFFFDa\uFFFD");
  EXPECT_EQ(Utf8("a\xFF", Charset::kUserDefined), "a\uF7FF");
  EXPECT_EQ(Utf8("anything", Charset::kReplacement), "\uFFFD");
  EXPECT_EQ(Utf8("plain", Charset::kKoi8R), "plain");
  EXPECT_EQ(Utf8("\xC1", Charset::kKoi8R), std::to_string(static_cast<int>(Charset::kKoi8R)) + ":\xC1");
  EXPECT_EQ(Utf8("\x1B$B$3", Charset::kIso2022Jp), std::to_string(static_cast<int>(Charset::kIso2022Jp)) + ":\x1B$B$3");
}

TEST(Charsets, AsciiIsNotCopied) {
  const std::string page = "<p>plain</p>";
  std::string storage;
  EXPECT_EQ(PageAsUtf8(page, Charset::kWindows1252, NamingDecoder(), storage).data(), page.data());
}

TEST(Charsets, MalformedUtf8IsReplaced) {
  std::string storage;
  EXPECT_EQ(WellFormed("a\xFF"
                       "b\xC3",
                       storage),
            "a\uFFFDb\uFFFD");
  EXPECT_EQ(WellFormed("grüß", storage), "grüß");
}

}  // namespace
}  // namespace quenlar
