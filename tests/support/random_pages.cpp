#include "support/random_pages.h"

#include <iterator>

namespace quenlar {
namespace {

constexpr std::string_view kPieces[] = {"<",       ">",           "@",           "@",          ".",
                                        ".",       "a",           "A",           "de",         "COM",
                                        "x",       "5",           "_",           "-",          "%",
                                        "+",       " ",           "\n",          "\r\n",       "\t",
                                        "/",       "#",           "?",           "'",          "\"",
                                        "=",       "r",           "\xC3\xBC",    "\xFF",       "museum",
                                        "a@b.de",  "M@X.Org",     "x@y.museum",  "1@2.3x",     "</a>",
                                        "</A",     "<a ",         "<A\n",        "<a href=",   "<a href=\"",
                                        "href=",   "HREF='",      "<frame src=", "src=\"",     "<FRAME ",
                                        "<p>",     "</p>",        "<b",          "mailto:",    "MailTo:",
                                        "&nbsp;",  "&amp;",       "amp;",        "&gt;",       "&#9733;",
                                        "<title>", "</TITLE>",    "<TITLE>",     "<h3 class=", "<H3 CLASS=\"r\">",
                                        "http://", "http://h/",   "http://o.de", "https://",   "../",
                                        "/#",      ".jpg",        ".JPEG",       "microsoft",  "wikipedia.org",
                                        "google.", "javascript:", "<!--",        "-->",        "&NBSP;",
                                        "x.html",  "hosted/",     "&laquo;",     "&#038;",     "\x7F",
                                        "&",       "&#38;",       "&#8250;",     "&#10;"};

template <std::size_t N>
std::string Any(std::mt19937& random, const std::string_view (&of)[N]) {
  return std::string(of[random() % N]);
}

std::string RandomAddress(std::mt19937& random) {
  static constexpr std::string_view kNames[] = {"info",    "John.Doe", "a_b", "x%20y",
                                                "Sales+1", "-z",       "..q", "web-master"};
  static constexpr std::string_view kHosts[] = {"x.de",    "mail.Example.COM", "a-b.org", "h.museum",
                                                "h.co.uk", "1.2.3.4",          "h.de_"};
  return Any(random, kNames) + "@" + Any(random, kHosts);
}

std::string RandomTarget(std::mt19937& random) {
  static constexpr std::string_view kTargets[] = {"x.html",
                                                  "../up.html",
                                                  "../../up/",
                                                  "/root",
                                                  "#top",
                                                  "http://h/same/",
                                                  "http://other.de",
                                                  "HTTP://Other.de/x",
                                                  "https://s/",
                                                  "mailto:a@b.de",
                                                  "javascript:f()",
                                                  "pic.JPG",
                                                  "p.jpg?x=1",
                                                  "a b",
                                                  "x&amp;y=1",
                                                  "",
                                                  "//o.de/x"};
  return Any(random, kTargets) + (random() % 3 == 0 ? std::to_string(random() % 20) : "");
}

}  // namespace

std::string RandomPage(std::mt19937& random, std::size_t pieces) {
  std::string page;
  // Few kinds of pieces on one page, so that rare ones meet each other.
  std::string_view chosen[12];
  for (std::string_view& piece : chosen) piece = kPieces[random() % std::size(kPieces)];
  for (std::size_t i = 0; i < pieces; ++i) {
    page += random() % 3 == 0 ? kPieces[random() % std::size(kPieces)] : chosen[random() % std::size(chosen)];
  }
  return page;
}

std::string RandomDocument(std::mt19937& random, std::size_t paragraphs) {
  static constexpr std::string_view kWords[] = {"some ",        "words -> ", "of\n",        "a &amp; page ",
                                                "<b>bold</b> ", "<br>",      "M\xC3\xBCll "};
  std::string page =
      "<html><head><title>Page " + std::to_string(random() % 9) + " &gt; " + Any(random, kWords) + "</title></head>\n";
  for (std::size_t i = 0; i < paragraphs; ++i) {
    page += "<p class=\"x\">";
    for (std::size_t k = random() % 6; k-- > 0;) page += Any(random, kWords);
    switch (random() % 8) {
      case 0:
        page += "<a href=\"mailto:" + RandomAddress(random) + "\">write</a>";
        break;
      case 1:
        page += RandomAddress(random);
        break;
      case 2:
        page += "<input value='" + RandomAddress(random) + "'>";
        break;
      case 3:
        page += "<A HREF='" + RandomTarget(random) + "'>link</A>";
        break;
      case 4:
        page += "<a href=" + RandomTarget(random) + ">link";
        break;
      case 5:
        page += "<frame src=\"" + RandomTarget(random) + "\">";
        break;
      default:
        page += "<a class=y href=\"" + RandomTarget(random) + "\">link</a>";
    }
    if (random() % 40 != 0) page += "</p>\n";
  }
  return page;
}

std::vector<std::string> HostilePages(std::size_t bytes) {
  const auto repeated = [bytes](std::string_view head, std::string_view unit, std::string_view tail) {
    std::string page(head);
    while (page.size() + unit.size() + tail.size() <= bytes) page += unit;
    return page += tail;
  };
  std::vector<std::string> pages;
  for (const std::string_view head : {"", "<", ">", "<a ", "<p>"}) {
    for (const std::string_view unit : {"a",          "<",       ">",        "%",           ".",       "@",
                                        "a@",         "a.",      "1",        "<x@y.zz>",    "x@y.zz ", "a@b.c ",
                                        "<a@b.c5",    ">a@b.c5", "<a>",      "<a href=x>",  "</a>",    "<frame src=x>",
                                        "&amp;",      "<title>", "</title>", "<h3 class=r", "-",       "<a href=\"",
                                        "x@y.museum", "<>"}) {
      for (const std::string_view tail : {"", ">", "<", "@b.de>", "a@b.b.b.b.de<"})
        pages.push_back(repeated(head, unit, tail));
    }
  }
  pages.push_back(repeated("<p>a@", "b.", "c<"));
  pages.push_back(repeated("<p>", "a.", "a@b.de<"));
  pages.push_back(repeated("<p>x@", "1", ".de<"));
  pages.push_back(repeated("<title>", "a", ""));
  pages.push_back(repeated("", "<a>", "</a>"));
  pages.push_back(repeated("", "<a href=x>", "</a"));
  pages.push_back(repeated("<h3 class=r>", "href=", ""));
  return pages;
}

}  // namespace quenlar
